"""Runs AArch64 programs under qemu-aarch64 and counts the instructions that they execute."""

import pathlib
import subprocess
import tempfile

NO_SVE = "neoverse-n1"


class Counts:
    """The standard output of a program, the counts of its marked sections, and its total."""

    def __init__(self, stdout, lines):
        self.stdout = stdout
        counts = [line.split() for line in lines]
        self.sections = [int(count) for kind, count in counts if kind == "section"]
        self.total = sum(int(count) for kind, count in counts if kind == "total")


def count_instructions(build, command, cpu=NO_SVE, quiet=False):
    """Runs a command (strings or paths) with the counter of the given build directory.

    A quiet run discards the standard error stream of the command.
    """
    with tempfile.TemporaryDirectory() as directory:
        out = pathlib.Path(directory) / "counts"
        plugin = f"file={build / 'lib' / 'libcount_instructions.so'},out={out}"
        result = subprocess.run(
            ["qemu-aarch64", "-L", "/usr/aarch64-linux-gnu", "-cpu", cpu, "-plugin", plugin,
             *command], stdout=subprocess.PIPE, text=True,
            stderr=subprocess.DEVNULL if quiet else None)
        if result.returncode != 0:
            raise SystemExit(f"bench: {command[0]} under qemu-aarch64 exited with "
                             f"{result.returncode}. Its own message is above")
        return Counts(result.stdout, out.read_text().splitlines())
