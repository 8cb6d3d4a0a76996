#!/usr/bin/env python3
"""Packs the release build, as it stands in build/bin, for an administrator.

    package.py ZIP_FILE

The notices of what is linked into the program are taken from the machine that built it.
"""
import os
import re
import sys
import textwrap
import zipfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
INSTALLED = "/usr/share/doc/%s/copyright"
RULE = "=" * 78


def read(path):
    with open(os.path.join(ROOT, path), encoding="utf-8") as file:
        return file.read()


def part(text, begin, end, what):
    """From the first line that begins with the one pattern to the line before the one that matches the other."""
    found = re.search(f"^{begin}.*?(?=^{end}|\\Z)", text, re.MULTILINE | re.DOTALL)
    if not found:
        sys.exit(f"!! no {what} among the notices of this machine")
    return found[0].rstrip() + "\n"


def licence(path, name):
    """Who holds the rights, and the text of the one licence, from a file in Debian's format."""
    text = read(path)
    both = (part(text, r"Files: \*\n", r"\n", f"copyright in {path}") + "\n" +
            part(text, rf"License: {name}\n(?= \S)", r"\S", f"licence {name} in {path}"))
    return re.sub(r"^ \.$", "", both, flags=re.MULTILINE)  # the format's mark for an empty line


def compiler_exception(path):
    text = read(path)
    return (part(text, "GCC is Copyright", "GCC is free software", "copyright of GCC") + "\n" +
            part(text, "The following runtime libraries", "The libbacktrace", "licence of GCC's runtime") + "\n" +
            part(text, "GCC RUNTIME LIBRARY EXCEPTION", "libquadmath", "exception of GCC"))


def notices():
    chapters = [
        ("Boost", licence(INSTALLED % "libboost1.81-tools-dev", "BSL-1.0")),
        ("zlib", licence(INSTALLED % "libz-mingw-w64-dev", "Zlib")),
        ("TinyXML", licence(".deps/src/tinyxml/tree/debian/copyright", "ZLIB")),
        ("libstdc++ and libgcc, the runtime libraries of GCC",
         compiler_exception(INSTALLED % "gcc-mingw-w64-x86-64-posix-runtime")),
        ("The runtime of MinGW-w64 with winpthreads", read(INSTALLED % "mingw-w64-x86-64-dev")),
    ]
    head = "Ormacon.exe contains parts of the following works, linked statically.\n"
    return head + "".join(f"\n{RULE}\n{title}\n{RULE}\n\n{text}" for title, text in chapters)


def row_as_text(row):
    first, *others = (cell.strip() for cell in re.split(r"(?<!\\)\|", row.strip().strip("|")))
    wrap = textwrap.TextWrapper(100, initial_indent="    ", subsequent_indent="    ",
                                break_long_words=False, break_on_hyphens=False)
    first = first.replace("`, `", "`,\n`")  # one message a line
    return "\n".join([first, *(wrap.fill(cell) for cell in others if cell), ""])


def without_tables(page):
    """For an editor that shows the page as it is: the first cell of each row, and the others below it."""
    page = re.sub(r"^ *\|.*\n *\|[-|]+$", "", page, flags=re.MULTILINE)  # headers
    lines = (row_as_text(line) if line.lstrip().startswith("|") else line for line in page.split("\n"))
    return re.sub("\n{3,}", "\n\n", "\n".join(lines))


def for_windows(text):
    """The byte order mark tells older editors that it is UTF-8."""
    return text.replace("\n", "\r\n").encode("utf-8-sig")


def main(target):
    with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
        for program in ("Ormacon.exe", "Ormacon.debug"):
            archive.write(os.path.join(ROOT, "build/bin", program), program)
        archive.writestr("Administrator.txt", for_windows(without_tables(read("docs/administrator.md"))))
        archive.writestr("Changes.txt", for_windows(read("CHANGELOG.md")))
        archive.writestr("Notices.txt", for_windows(notices()))


if __name__ == "__main__":
    main(*sys.argv[1:])
