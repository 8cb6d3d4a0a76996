#!/usr/bin/env python3
"""Fails where a function would be looked for in the wrong file, or a file depends on what is above it.

- What a header declares is implemented in the source of the header's name, or in the header itself.
- A file includes only what is in its own folder and in those below it.
- No headers, and no folders, include each other in a circle.
"""
import collections
import graphlib
import json
import os
import re
import subprocess
import sys

# The highest first; what is in one line does not include each other. Sub-folders count with their folder.
LAYERS = [("app",), ("wizard", "demo_library"), ("conf_tool",), ("common/crash", "common/plugin"), ("common/logging",),
          ("common/platform",), ("common/encoding",), ("common/exc", "common/xml"), ("common",)]
# The demonstration library knows of the program only what every library knows.
DEMO_LIBRARY_INCLUDES = {"conf_tool/library_interface.h", "common/xml/find_xml_fault.h"}
# The exceptions convert the system's texts.
UPWARD = {(f"common/exc/{name}.cpp", "common/encoding/convert.h") for name in ("raise", "system_error_text")}


def output_of(*command, **options):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True, **options).stdout


def misplaced_functions(files):
    tags = output_of("ctags", "-L", "-", "-f", "-", "--langmap=C++:.h.cpp", "--kinds-C++=pf", "--fields=+nZ",
                     "-Ioffsetof",  # in a static_assert it is taken for a function
                     "--fields-C++=+{properties}", "--output-format=json", input="\n".join(files))
    declared, defined = collections.defaultdict(dict), collections.defaultdict(list)
    for tag in map(json.loads, tags.splitlines()):
        name = "::".join(filter(None, [tag.get("scope"), tag["name"]]))
        place = f"{tag['path']}:{tag['line']}"
        if tag["kind"] == "function":
            defined[name].append(place)
        elif tag["path"].endswith(".h") and not re.search("pure|delete|default", tag.get("properties", "")):
            declared[name][os.path.splitext(tag["path"])[0]] = place
    for name, headers in declared.items():
        for place in defined[name] or ["nowhere"]:
            if place.rpartition(".")[0] not in headers:
                yield f"{', '.join(headers.values())}: {name} is implemented in {place}"


def layer(path):
    """The level of a file, and the folder that has it."""
    found = [(level, folder) for level, folders in enumerate(LAYERS) for folder in folders
             if path.startswith(folder + "/")]
    return max(found, key=lambda entry: len(entry[1]))


def faults_of_includes(files):
    by_file, by_folder = collections.defaultdict(set), collections.defaultdict(set)
    for path in files:
        with open(path, encoding="utf-8") as source:
            included = set(re.findall(r'^#include "(.*)"', source.read(), re.M))
        for header in included - {to for origin, to in UPWARD if origin == path}:
            by_file[path].add(header)
            by_folder[os.path.dirname(path)].update({os.path.dirname(header)} - {os.path.dirname(path)})
            own, other = layer(path), layer(header)
            if own[1] == "demo_library" != other[1] and header not in DEMO_LIBRARY_INCLUDES or \
                    own[1] != other[1] and other[0] <= own[0]:
                yield f"{path} must not include {header}"
    for graph in by_file, by_folder:
        try:
            graphlib.TopologicalSorter(graph).prepare()
        except graphlib.CycleError as error:
            yield "a circle of includes: " + " <- ".join(error.args[1])


sources = output_of("git", "ls-files", "*.h", "*.cpp", ":!tests", ":!benchmarks").split()
faults = [*misplaced_functions(sources), *faults_of_includes(sources)]
print("\n".join(faults))
sys.exit(bool(faults))
