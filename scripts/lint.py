#!/usr/bin/env python3
"""Checks the formatting of all sources, and runs clang-tidy over what has changed.

clang-tidy takes seconds for a file. A file that passed is not checked again until it, a header that
it includes, or a .clang-tidy above it changes: build/lint holds an empty stamp for each passed state, named by
a hash of all these contents. The headers are those that the last build recorded, so build first.
"""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
STAMPS = ROOT / "build" / "lint"
# In this order: a source that both build is checked as AArch64 code.
BUILDS = [ROOT / "build" / "aarch64", ROOT / "build" / "native"]
FORMATTED = (".c", ".cpp", ".h")


def sources():
    """All files under version control, or about to be."""
    listing = subprocess.run(
        ["git", "-c", "safe.directory=*", "ls-files", "--cached", "--others", "--exclude-standard",
         "-z"],
        cwd=ROOT, check=True, capture_output=True, text=True).stdout
    return [name for name in listing.split("\0") if name and (ROOT / name).exists()]


def check_format():
    names = [name for name in sources() if name.endswith(FORMATTED)]
    return subprocess.run(["clang-format", "--dry-run", "-Werror", *names], cwd=ROOT).returncode == 0


def included_files(build):
    """Maps each object file of a build to the project's files that it was made from."""
    listing = subprocess.run(
        ["ninja", "-C", build, "-t", "deps"], check=True, capture_output=True, text=True).stdout
    result = {}
    for line in listing.splitlines():
        if line.startswith(" "):
            path = (build / line.strip()).resolve()
            if path.is_relative_to(ROOT):
                files.append(path)
        elif line:
            files = result.setdefault(line.split(": #deps")[0], [])
    return result


def object_file(command):
    words = command["command"].split()
    return words[words.index("-o") + 1]


def translation_units():
    """Maps each source to its build directory and the files that it depends on."""
    units = {}
    for build in BUILDS:
        included = included_files(build)
        for command in json.loads((build / "compile_commands.json").read_text()):
            source = pathlib.Path(command["file"])
            if source.suffix not in FORMATTED or not source.is_relative_to(ROOT):
                continue
            if not source.is_relative_to(ROOT / "build"):
                units.setdefault(source, (build, included.get(object_file(command), [])))
    return units


def stamp(source, files, tool_version):
    rules = [path for above in source.parents if (path := above / ".clang-tidy").exists()
             and path.is_relative_to(ROOT)]
    state = hashlib.sha256(tool_version)
    for path in [source, *rules, *sorted(set(files))]:
        state.update(str(path.relative_to(ROOT)).encode() + b"\0" + path.read_bytes())
    return STAMPS / state.hexdigest()


def tidy(source, build, passed):
    result = subprocess.run(
        ["clang-tidy", "--quiet", "-p", build, source], capture_output=True, text=True)
    if result.returncode == 0:
        passed.touch()
        return True
    print(f"lint: clang-tidy refuses {source.relative_to(ROOT)}:\n{result.stdout}{result.stderr}")
    return False


def check_tidy():
    STAMPS.mkdir(parents=True, exist_ok=True)
    version = subprocess.run(
        ["clang-tidy", "--version"], check=True, capture_output=True).stdout
    waiting = [(source, build, passed)
               for source, (build, files) in translation_units().items()
               if not (passed := stamp(source, files, version)).exists()]
    if waiting:
        print(f"lint: clang-tidy checks {len(waiting)} files", flush=True)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        return all(list(pool.map(lambda unit: tidy(*unit), waiting)))


def main():
    formatted = check_format()
    tidied = check_tidy()
    return 0 if formatted and tidied else 1


if __name__ == "__main__":
    sys.exit(main())
