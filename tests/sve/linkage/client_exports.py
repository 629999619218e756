#!/usr/bin/env -S python3 -B
"""Checks that the client exports all names that an object takes from the library, and no name that
is private to a file.

    client_exports.py NM OBJECT LIBRARY CLIENT
"""

import subprocess
import sys

OWN_TO_A_FILE = ("tls_idx",)


def symbols(nm, *arguments):
    listing = subprocess.run([nm, "--format=posix", *arguments], check=True, capture_output=True,
                             text=True).stdout
    return {line.split()[0] for line in listing.splitlines() if len(line.split()) > 1}


def main():
    nm, used_by, library, client = sys.argv[1:]
    taken = symbols(nm, "-u", used_by) & symbols(nm, "--defined-only", library)
    exported = symbols(nm, "-D", "--defined-only", client)
    problems = [f"the client does not export {name}" for name in sorted(taken - exported)]
    problems += [f"the client exports {name}" for name in sorted(exported)
                 if any(own in name for own in OWN_TO_A_FILE)]
    if not taken:
        problems.append("the object takes nothing from the library")
    print(f"{len(taken)} names taken from the library", *problems, sep="\n")
    return 1 if problems else 0


sys.exit(main())
