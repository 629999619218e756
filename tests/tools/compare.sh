#!/bin/bash
# Runs a program on a processor with SVE and, under the launcher, on one without, each time in an
# empty directory. Fails unless both succeed, print the same and write the same files, byte for byte,
# and the launcher's last words are the two count lines.
#
# compare_processors.sh PROGRAM REFERENCE... -- LAUNCHER..., with absolute paths
set -u
program=$1
shift
reference=()
while [ "$1" != -- ]; do
  reference+=("$1")
  shift
done
shift

out=$(mktemp -d) || exit 2
trap 'rm -r "$out"' EXIT
fail() {
  echo "${program##*/}: $1" >&2
  tail -n 20 "$out/stderr" >&2
  exit 1
}

# run DIRECTORY COMMAND...
run() {
  mkdir "$out/$1" && cd "$out/$1" || exit 2
  shift
  "$@" "$program" >stdout 2>"$out/stderr"
}

run expected "${reference[@]}" || fail "ends with status $? on the reference"
run emulated "$@" || fail "ends with status $? under the launcher"
diff -r "$out/expected" "$out/emulated" || fail "gives something else under the launcher"

name=${program##*/}
tail -n 2 "$out/stderr" | tr '\n' ';' |
  grep -Eqx "$name: [1-9][0-9]* SVE instructions executed;$name: [1-9][0-9]* Non-SVE AArch64 instructions executed;" ||
  fail "does not end with the two count lines"
