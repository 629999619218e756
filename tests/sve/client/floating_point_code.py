#!/usr/bin/env -S python3 -B
"""floating_point_code.py OBJDUMP LIBRARY: checks which of the client's machine code raises flags.

Only a floating-point fast path may raise flags in the FPSR, and only with the instruction that
corresponds to the emulated one. Its handler reads the FPSR directly after the call. Nothing else
reads or writes FPSR and FPCR. A fast path makes no call, because no library function promises to
leave the flags alone.
"""

import collections
import pathlib
import re
import subprocess
import sys

Function = collections.namedtuple("Function", "name instructions")

# The instruction with which each fast path may raise flags.
INSTRUCTION = {
    "fadd": "fadd", "fsub": "fsub", "fsubr": "fsub", "fmul": "fmul", "fdiv": "fdiv",
    "fdivr": "fdiv", "fmax": "fmax", "fmaxnm": "fmaxnm", "fminnm": "fminnm", "fnmla": "fnmadd",
    "fsqrt": "fsqrt", "frinta": "frinta", "frecpe": "frecpe", "frecps": "frecps",
    "fcmeq": "fcmp", "fcmne": "fcmp", "fcmuo": "fcmp", "fcmge": "fcmpe", "fcmgt": "fcmpe",
    "fcmle": "fcmpe", "fcmlt": "fcmpe", "scvtf": "scvtf", "ucvtf": "ucvtf",
    "fmaxnmv": "fmaxnm", "fminnmv": "fminnm",
}
# These instructions begin with f and leave the FPSR alone. Of the instructions that do not begin
# with f, only the conversions from integers raise flags.
SILENT = {"fmov", "fneg", "fabs", "fcsel"}

# These compute with constants that the compiler knows, and no handler calls them.
UNREACHED = r"_Z\d+recip_(sqrt_)?estimated"

SOURCES = pathlib.Path(__file__).resolve().parents[3] / "sve"
TABLE = SOURCES / "decode" / "instructions"
# These have the names of fast paths, but they only report that there is no fast path.
STUBS = set(re.findall(r"^STUB\((\w+)", (SOURCES / "fast" / "stub_entries.inc").read_text(), re.M))


def disassemble(objdump, library):
    listing = subprocess.run([objdump, "-d", "--no-show-raw-insn", library], check=True,
                             stdout=subprocess.PIPE, text=True).stdout
    functions = []
    for line in listing.splitlines():
        if label := re.match(r"[0-9a-f]+ <(.*)>:$", line):
            functions.append(Function(label[1], []))
        elif instruction := re.match(r" *[0-9a-f]+:\t(\S+)(.*)", line):
            functions[-1].instructions.append((instruction[1], instruction[2]))
    return functions


def raising(function):
    return {mnemonic for mnemonic, _ in function.instructions
            if (mnemonic[0] == "f" and mnemonic not in SILENT) or mnemonic in ("scvtf", "ucvtf")}


def is_call(instruction):
    return instruction[0] in ("bl", "blr")


def leaves(instruction, function):
    """Whether the instruction is a tail call."""
    mnemonic, operands = instruction
    target = re.search(r"<([^+>]+)", operands)
    return mnemonic == "br" or (mnemonic == "b" and target[1] != function.name)


def status_accesses(function):
    """The positions of instructions that read or write FPSR or FPCR."""
    return [i for i, (mnemonic, operands) in enumerate(function.instructions)
            if mnemonic in ("mrs", "msr") and re.search("fp[sc]r", operands)]


def faults_of_fast_path(function, operation):
    if raising(function) != {INSTRUCTION[operation]}:
        yield f"raises flags with {raising(function)}, not with {INSTRUCTION[operation]}"
    if any(is_call(i) or leaves(i, function) for i in function.instructions):
        yield "has a call"


def faults_of_handler(function):
    accesses = status_accesses(function)
    instructions = function.instructions
    if len(accesses) != 1 or not re.search(r"x\d+, fpsr", instructions[accesses[0]][1]):
        yield "does not read the FPSR once"
    elif not is_call(instructions[accesses[0] - 1]):
        yield "does not read the FPSR directly after the call of the fast path"
    if raising(function):
        yield f"raises flags with {raising(function)}"


def faults_of_other(function):
    if raising(function):
        yield f"raises flags with {raising(function)}"
    if status_accesses(function):
        yield "reads or writes FPSR or FPCR"


def faults(function):
    fast_path = re.match(r"_Z(\d+)(sve_([a-z]+)_.*)", function.name)
    if (fast_path and fast_path[3] in INSTRUCTION
            and fast_path[2][:int(fast_path[1])] not in STUBS):
        return faults_of_fast_path(function, fast_path[3])
    if "fast_fp_handler" in function.name:
        return faults_of_handler(function)
    if re.fullmatch(UNREACHED, function.name):
        return ()
    return faults_of_other(function)


def main():
    functions = disassemble(*sys.argv[1:])
    found = [f"{f.name}: {fault}" for f in functions for fault in faults(f)]
    handlers = sum("fast_fp_handler" in f.name for f in functions)
    rows = sum(line.startswith("FAST_FP ") for file in TABLE.glob("*.inc")
               for line in file.read_text().splitlines())
    if handlers != rows:
        found.append(f"{handlers} handlers read the FPSR, but {rows} rows raise flags")
    print(*found, f"{len(functions)} functions, {handlers} handlers, {len(found)} faults", sep="\n")
    sys.exit(bool(found))


main()
