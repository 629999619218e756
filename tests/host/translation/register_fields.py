"""Compares the translator's table of register fields with the disassembler, on random words.

Arguments: the disassembler, a seed or "random", and the command that runs the listing program.
"""

import random
import re
import subprocess
import sys
import tempfile

COUNT = 400000

# Words that may differ, each with its reason.
EXCEPTIONS = {
    "smulh": "the field at bits 14:10 is not a register, though it can hold the number of one",
    "umulh": "the same",
    "msr": "the disassembler prints a system register for op0 0 and 1, though there is none",
}
# The disassembler knows these instructions, but the table refuses them.
REFUSED = re.compile(r"\bza\d*[hv]?\b|^(ld|st)64b|^[su]?(mop|add)[ahs]|^(f|bf|su|us|u|s)mop")


def disassemble(objdump, path):
    listing = subprocess.run(
        [objdump, "-D", "-b", "binary", "-m", "aarch64", path],
        check=True, capture_output=True, text=True).stdout
    for line in listing.splitlines():
        parts = line.split("\t")
        if len(parts) >= 3:
            yield parts[1].strip(), " ".join(parts[2:]).split("//")[0].strip()


def is_fault(answer, text):
    mnemonic = text.split()[0]
    if mnemonic.startswith(".") or "undefined" in text or mnemonic in EXCEPTIONS:
        return False
    if answer == "r":
        return not REFUSED.search(text)
    return (answer == "y") != bool(re.search(r"\b[xw]28\b", text))


def main():
    objdump, seed, *command = sys.argv[1:]
    if seed == "random":
        seed = str(random.randrange(2**32))
    print("seed", seed)
    with tempfile.NamedTemporaryFile() as file:
        answers = subprocess.run(command + [seed, str(COUNT), file.name],
                                 check=True, capture_output=True, text=True).stdout
        lines = list(disassemble(objdump, file.name))
    assert len(lines) == len(answers) == COUNT
    faults = [f"{word} {text}: {answer}"
              for answer, (word, text) in zip(answers, lines) if is_fault(answer, text)]
    compared = sum(not text.startswith(".") for _, text in lines)
    print(f"{compared} allocated words, {len(faults)} faults")
    print("\n".join(faults[:20]))
    return 1 if faults or compared < COUNT // 10 else 0


sys.exit(main())
