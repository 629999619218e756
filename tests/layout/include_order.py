#!/usr/bin/env python3
"""Checks the order of the floors. A file may only include files of its own floor and of lower ones,
and no files may include one another in a circle. Names each line that breaks these rules.

    include_order.py [ROOT]
"""

import graphlib
import pathlib
import re
import sys

# The folders of a house, from the lowest floor to the highest. host/include is the interface that
# the host offers to clients: its headers include no other file of the host.
HOUSES = {
    "sve": ["state", "fp", "semantics", "fast", "decode", "client"],
    "host": ["include", "kernel", "loading", "translation", "threads", "memory", "client",
             "signals", "processes", "launcher"],
}

# Lines that reach up on purpose, each with its reason.
EXCEPTIONS = {
    ("sve/decode/sve_utils.cpp", "sve/client/counters.h"):
        "execute_sve_instruction runs an instruction outside of any client, and counts it as one",
}

INCLUDE = re.compile(r'\s*#\s*include "((?:sve|host)/[^"]+)"')


def floor_of(path):
    """The house of a file and the number of its floor."""
    house, folder = path.split("/")[:2]
    if folder not in HOUSES[house]:
        sys.exit(f"{path}: {house}/{folder} has no place in the order of floors; give it one here")
    return house, HOUSES[house].index(folder)


def includes_below(root):
    """All includes of house files in the houses, as (file, line number, included file)."""
    for house in HOUSES:
        for path in sorted((root / house).glob("*/**/*.*")):
            if path.suffix not in (".h", ".cpp", ".S", ".inc"):
                continue
            for number, line in enumerate(path.read_text().splitlines(), 1):
                if found := INCLUDE.match(line):
                    yield path.relative_to(root).as_posix(), number, found[1]


def unit_of(path):
    """The unit of a file: a header and the sources with the same name are one unit."""
    return path.rsplit(".", 1)[0]


def main(root):
    faults, unused, graph = [], set(EXCEPTIONS), {}
    for path, number, included in includes_below(root):
        house, floor = floor_of(path)
        other_house, other_floor = floor_of(included)
        if (path, included) in EXCEPTIONS:
            unused.discard((path, included))
            continue
        if other_house != house or other_floor > floor:
            faults.append(f"{path}:{number}: includes {included}, "
                          "which is on a higher floor or in another house")
        if unit_of(path) != unit_of(included):
            graph.setdefault(unit_of(path), set()).add(unit_of(included))
    faults += [f"{path}: no longer includes {included}; drop the exception"
               for path, included in unused]
    try:
        graphlib.TopologicalSorter(graph).prepare()
    except graphlib.CycleError as error:
        faults.append("these include one another in a circle: " + " <- ".join(error.args[1]))
    print("\n".join(faults) or f"{len(graph)} units, no line reaches up, no circle")
    return len(faults) != 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()))
