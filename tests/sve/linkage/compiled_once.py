#!/usr/bin/env -S python3 -B
"""Checks that the build compiles each source of the core and the client as often as it must: a
source that depends on the vector length once for each length, and every other source once.

    compiled_once.py NM BUILD SOURCES

An object that depends on the length refers to the symbol sve_library_of_BITS_bits.
"""

import collections
import json
import pathlib
import re
import shlex
import subprocess
import sys


def objects_by_source(build, sources):
    commands = json.loads((build / "compile_commands.json").read_text())
    result = collections.defaultdict(list)
    for command in commands:
        source = pathlib.Path(command["file"])
        if source.is_relative_to(sources / "sve"):
            words = shlex.split(command["command"])
            result[source.relative_to(sources).as_posix()].append(
                build / words[words.index("-o") + 1])
    return result


def lengths(nm, path):
    """The vector lengths that an object depends on."""
    names = subprocess.run([nm, "--format=posix", path], check=True, capture_output=True,
                           text=True).stdout
    return set(re.findall(r"^sve_library_of_(\d+)_bits ", names, re.M))


def main():
    nm, build, sources = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
    problems, once, by_length = [], 0, []
    for source, objects in sorted(objects_by_source(build, sources).items()):
        found = [lengths(nm, path) for path in objects if path.exists()]
        if any(found):
            by_length.append((source, sorted(" ".join(sorted(each)) for each in found)))
        elif len(objects) == 1:
            once += 1
        else:
            problems.append(f"{source} does not depend on the vector length, but the build "
                            f"compiles it {len(objects)} times; move it to sve_common")
    all_lengths = by_length[0][1] if by_length else []
    problems += [f"{source} is compiled for {found}, and {by_length[0][0]} for {all_lengths}"
                 for source, found in by_length if found != all_lengths]
    if len(set(all_lengths)) < 2 or "" in all_lengths or once == 0:
        problems.append("there are not sources of both kinds and two lengths to compare")
    print(f"{once} sources compiled once, {len(by_length)} for each of {', '.join(all_lengths)} bits",
          *problems, sep="\n")
    return 1 if problems else 0


sys.exit(main())
