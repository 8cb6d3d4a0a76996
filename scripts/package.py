#!/usr/bin/env python3
"""Packs what has been built.

    package.py VERSION PROGRAM ZIP_FILE             the release build, for an administrator
    package.py --tests VERSION PROGRAM ZIP_FILE     the release build and the tests, for someone with Windows

PROGRAM is Ormacon.exe, signed or not. The install rules of the builds say which of their files belong to an archive; the
documents are made here. The same files give the same archive: entries are sorted, and their time is that of the last
commit, which the archive names. The notices of the linked libraries come from the machine that builds. Run it with
Debian's own /usr/bin/python3, which has the library for html_page.
"""
import argparse
import os
import pathlib
import re
import struct
import subprocess
import sys
import tempfile
import time
import zipfile

from html_page import html_page

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
INSTALLED = "/usr/share/doc/%s/copyright"
RULE = "=" * 78
WINDOWS_LIBRARIES = {"advapi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "shell32.dll",
                     "api-ms-win-core-synch-l1-2-0.dll"}


def read_bytes(path):
    with open(os.path.join(ROOT, path), "rb") as file:
        return file.read()


def read(path):
    return read_bytes(path).decode("utf-8")


def output_of(*command):
    return subprocess.run(command, cwd=ROOT, check=True, capture_output=True, text=True).stdout.strip()


def commit():
    return output_of("git", "describe", "--always", "--abbrev=40", "--exclude=*", "--dirty=-changed")


def version_of(package):
    return output_of("dpkg-query", "-W", "-f", "${Version}", package)


def part(text, begin, end, what):
    """The text from the first line that matches begin to the line before the next one that matches end."""
    found = re.search(f"^{begin}.*?(?=^{end}|\\Z)", text, re.MULTILINE | re.DOTALL)
    if not found:
        sys.exit(f"!! cannot find the {what}: the file of Debian's package has another form; adapt notices()")
    return found[0].rstrip() + "\n"


def licence(path, name):
    """The copyright and the text of this licence, from a file in Debian's format."""
    text = read(path)
    both = (part(text, r"Files: \*\n", r"\n", f"copyright in {path}") + "\n" +
            part(text, rf"License: {name}\n(?= \S)", r"\S", f"licence {name} in {path}"))
    return re.sub(r"^ \.$", "", both, flags=re.MULTILINE)  # an empty line in Debian's format


def compiler_exception(path):
    text = read(path)
    return (part(text, "GCC is Copyright", "GCC is free software", "copyright of GCC") + "\n" +
            part(text, "The following runtime libraries", "The libbacktrace", "licence of GCC's runtime") + "\n" +
            part(text, "GCC RUNTIME LIBRARY EXCEPTION", "libquadmath", "exception of GCC"))


def notices(version):
    boost = read(".deps/src/boost.version").strip()
    boost_tools = "libboost%s-tools-dev" % re.match(r"\d+\.\d+", boost)[0]
    zlib, gcc, mingw = "libz-mingw-w64-dev", "gcc-mingw-w64-x86-64-posix-runtime", "mingw-w64-x86-64-dev"
    chapters = [
        ("Boost", boost, licence(INSTALLED % boost_tools, "BSL-1.0")),
        ("zlib", version_of(zlib), licence(INSTALLED % zlib, "Zlib")),
        ("TinyXML", read(".deps/src/tinyxml.version").strip(),
         licence(".deps/src/tinyxml/tree/debian/copyright", "ZLIB")),
        ("libstdc++ and libgcc, the runtime libraries of GCC", version_of(gcc), compiler_exception(INSTALLED % gcc)),
        ("The runtime of MinGW-w64 with winpthreads", version_of(mingw), read(INSTALLED % mingw)),
    ]
    head = (f"Ormacon {version}, built from commit {commit()}.\n\n"
            "Ormacon.exe contains parts of the following works, linked statically, in these package versions.\n")
    return head + "".join(f"\n{RULE}\n{title}, {version}\n{RULE}\n\n{text}" for title, version, text in chapters)


def check_images(content):
    """A program file, and those that it contains as data: high-entropy addresses, addresses chosen at each start, no
    execution of data, and nothing that is both writable and executable."""
    images = 0
    for match in re.finditer(b"MZ", content):
        header = match.start() + int.from_bytes(content[match.start() + 0x3c:match.start() + 0x40], "little")
        if content[header:header + 4] != b"PE\0\0":
            continue
        images += 1
        count, options_size = (struct.unpack_from("<H", content, header + offset)[0] for offset in (6, 20))
        if struct.unpack_from("<H", content, header + 0x5e)[0] & 0x0160 != 0x0160:
            sys.exit(f"!! the program file at {match.start()} lacks a protection: see cmake/compile_options.cmake")
        for section in range(header + 24 + options_size, header + 24 + options_size + 40 * count, 40):
            if struct.unpack_from("<I", content, section + 36)[0] & 0xa0000000 == 0xa0000000:
                sys.exit(f"!! a section is writable and executable: {content[section:section + 8]}")
    if not images:
        sys.exit("!! this is not a program file")
    if content.count(b"asInvoker") != images:
        sys.exit("!! a program file has no manifest that runs it with the rights of its caller")


def check_libraries(path):
    """The program needs no library but those of every Windows, and loads version.dll by itself."""
    needed = {name.lower() for name in re.findall(r"DLL Name: (\S+)", output_of("x86_64-w64-mingw32-objdump", "-p", path))}
    if unknown := needed - WINDOWS_LIBRARIES:
        sys.exit(f"!! the program needs {unknown}")


def for_windows(text):
    """With a byte order mark, by which older editors recognise UTF-8."""
    return text.replace("\n", "\r\n").encode("utf-8-sig")


def installed(build, *components):
    """What the install rules of these components put where."""
    with tempfile.TemporaryDirectory() as folder:
        for component in components:
            output_of("cmake", "--install", f"build/{build}", "--prefix", folder, "--component", component)
        paths = [path for path in pathlib.Path(folder).rglob("*") if path.is_file()]
        return {path.relative_to(folder).as_posix(): path.read_bytes() for path in paths}


def for_administrator(version, program):
    changes = read("CHANGELOG.md")
    if f"\n## {version} (" not in changes:
        sys.exit(f"!! CHANGELOG.md has no chapter about version {version}")
    return {
        **installed("release", "program", "administrator"),
        "Administrator.html": for_windows(html_page(read("docs/administrator.md"), f"Ormacon {version}")),
        "Changes.txt": for_windows(changes),
        "Notices.txt": for_windows(notices(version)),
        "Ormacon.exe": program,
    }


def for_testing(version, program):
    """The GoogleTest programs, which are the tests that need only Windows."""
    tests = installed("test", "tests")
    programs = [name.removeprefix("tests/").replace("/", "\\") for name in tests if name.endswith("_test.exe")]
    script = read("scripts/run-tests.cmd").replace("@VERSION@", version).replace("@COMMIT@", commit())
    script = script.replace("@PROGRAMS@", " ".join(sorted(programs)))
    return {
        **tests,
        **installed("release", "program", "demonstration"),
        "run-tests.cmd": script.replace("\n", "\r\n").encode(),
        "Ormacon.exe": program,
    }


def write_archive(target, files):
    moment = int(os.environ.get("SOURCE_DATE_EPOCH") or output_of("git", "log", "-1", "--format=%ct"))
    with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
        for name in sorted(files):
            if name.endswith((".cmd", ".ps1")):
                files[name].decode("ascii")  # their interpreters take other letters for those of a code page
            entry = zipfile.ZipInfo(name, time.gmtime(moment)[:6])
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = 0o100755 << 16 if name.endswith((".exe", ".dll")) else 0o100644 << 16
            archive.writestr(entry, files[name])


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--tests", action="store_const", const=for_testing, default=for_administrator, dest="files")
    for name in ("version", "program", "zip_file"):
        parser.add_argument(name)
    wanted = parser.parse_args()
    program_file = read_bytes(wanted.program)
    check_images(program_file)
    check_libraries(wanted.program)
    write_archive(wanted.zip_file, wanted.files(wanted.version, program_file))
