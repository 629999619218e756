#!/usr/bin/env python3
"""lint.py [all]: checks the formatting of all sources, and runs clang-tidy on files that changed.

clang-tidy takes seconds for a file. A file that passed is not checked again until it, a header that
it includes, or a .clang-tidy above it changes: build/lint holds an empty stamp for each state that
passed, named by a hash of all these contents. The headers are those that the last build recorded,
so build first.

One of its checks, the static analyzer, follows the paths through a function as long as it finds new
ones. For a few files, mostly in sve/fp, that takes most of the time. So it gives up on a function
early, and with "all" late. A file that passed with "all" has also passed without it.
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
# The order matters: a source that is in both builds is checked as AArch64 code.
BUILDS = [ROOT / "build" / "aarch64", ROOT / "build" / "native"]
FORMATTED = (".c", ".cpp", ".h")
# How many states of a function the analyzer examines. clang's default is 225000.
EARLY = [f"--extra-arg={word}"
         for word in ["-Xclang", "-analyzer-config", "-Xclang", "max-nodes=20000"]]
LATE = []


def sources():
    """All files under version control, or about to be."""
    listing = subprocess.run(
        ["git", "-c", "safe.directory=*", "ls-files", "--cached", "--others", "--exclude-standard",
         "-z"],
        cwd=ROOT, check=True, capture_output=True, text=True).stdout
    return [name for name in listing.split("\0") if name and (ROOT / name).exists()]


def check_format():
    names = [name for name in sources() if name.endswith(FORMATTED)]
    command = ["clang-format", "--dry-run", "-Werror", *names]
    return subprocess.run(command, cwd=ROOT).returncode == 0


def included_files(build):
    """Maps each object file of a build to the project's files that it was built from."""
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


def stamp(source, files, tool):
    rules = [path for above in source.parents if (path := above / ".clang-tidy").exists()
             and path.is_relative_to(ROOT)]
    state = hashlib.sha256(tool)
    for path in [source, *rules, *sorted(set(files))]:
        state.update(str(path.relative_to(ROOT)).encode() + b"\0" + path.read_bytes())
    return STAMPS / state.hexdigest()


def tidy(effort, source, build, passed):
    result = subprocess.run(
        ["clang-tidy", "--quiet", "-p", build, *effort, source], capture_output=True, text=True)
    if result.returncode == 0:
        passed.touch()
        return True
    print(f"lint: clang-tidy refuses {source.relative_to(ROOT)}:\n{result.stdout}{result.stderr}")
    return False


def waiting_units(effort):
    """The source, build directory and stamp of each file that has to be checked."""
    version = subprocess.run(
        ["clang-tidy", "--version"], check=True, capture_output=True).stdout
    for source, (build, files) in translation_units().items():
        early, late = (stamp(source, files, version + repr(words).encode())
                       for words in (EARLY, LATE))
        if not late.exists() and not (effort == EARLY and early.exists()):
            yield source, build, early if effort == EARLY else late


def check_tidy(effort):
    STAMPS.mkdir(parents=True, exist_ok=True)
    waiting = list(waiting_units(effort))
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = [pool.submit(tidy, effort, *unit) for unit in waiting]
        for done, _ in enumerate(concurrent.futures.as_completed(results), 1):
            if done % 20 == 0 or done == len(waiting):
                print(f"lint: clang-tidy has checked {done} of {len(waiting)} files", flush=True)
    return all(result.result() for result in results)


def main():
    formatted = check_format()
    tidied = check_tidy(LATE if sys.argv[1:] == ["all"] else EARLY)
    return 0 if formatted and tidied else 1


if __name__ == "__main__":
    sys.exit(main())
