#!/usr/bin/env -S python3 -B
"""Compares the disassembly with that of binutils, for random words of every row.

    disassembly.py OBJDUMP SEED COMMAND...

COMMAND runs disassembly_words. SEED may be "random". Words that binutils prints as .inst or as
undefined are left out. At least one word of every row must be compared.
"""

import random
import re
import struct
import subprocess
import sys
import tempfile

WORDS_PER_ROW = 32
MAX_SHOWN = 20

# Where binutils writes something else: its text, how to make ours from it, and the difference.
DIFFERENCES = (
    (r"#(-?\d\.\d+e[+-]\d+)", lambda match: "#" + repr(float(match[1])),
     "FDUP and FCPY: binutils writes 19 digits and an exponent"),
)


def binutils(objdump, words):
    command = [objdump, "-D", "-b", "binary", "-m", "aarch64", "-M", "no-aliases", "-z"]
    with tempfile.NamedTemporaryFile() as file:
        file.write(struct.pack(f"<{len(words)}I", *words))
        file.flush()
        listing = subprocess.run([*command, file.name], check=True, capture_output=True,
                                 text=True).stdout
    found = re.findall(r"^ *[0-9a-f]+:\t([0-9a-f]{8}) \t(.*)$", listing, re.MULTILINE)
    if [int(word, 16) for word, _ in found] != words:
        sys.exit("disassembly: cannot read what objdump prints")
    return [text.split("//")[0].replace("\t", " ").strip() for _, text in found]


def as_ours(text):
    for pattern, change, _ in DIFFERENCES:
        text = re.sub(pattern, change, text)
    return text


def main():
    objdump, seed, *command = sys.argv[1:]
    if seed == "random":
        seed = str(random.randrange(2**32))
    print(f"seed {seed}")
    listing = subprocess.run([*command, seed, str(WORDS_PER_ROW)], check=True, capture_output=True,
                             text=True).stdout
    lines = [line.split(" ", 2) for line in listing.splitlines()]
    expected = binutils(objdump, [int(word, 16) for _, word, _ in lines])

    not_compared = {row for row, _, _ in lines}
    reserved = 0
    wrong = []
    for (row, word, text), theirs in zip(lines, expected):
        if theirs.startswith(".inst") or "undefined" in theirs:
            reserved += 1
            continue
        not_compared.discard(row)
        if text != as_ours(theirs):
            wrong.append(f"{row} 0x{word}: {text}, binutils: {theirs}")
    print(f"{len(lines) - reserved} words compared, {len(wrong)} differ, {reserved} reserved")
    print(*wrong[:MAX_SHOWN], sep="\n")
    for row in sorted(not_compared):
        print(f"{row}: all words are reserved")
    return 1 if wrong or not_compared or not lines else 0


sys.exit(main())
