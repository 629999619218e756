#!/bin/bash
# Runs a program on a processor with SVE and, under the launcher, on one without. Fails unless both
# print the same, byte for byte, and end with the same status, and the launcher's last words are the
# two count lines.
#
# compare.sh PROGRAM REFERENCE... -- LAUNCHER...
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

"${reference[@]}" "$program" >"$out/expected" 2>"$out/stderr"
expected_status=$?
[ $expected_status = 0 ] || fail "ends with status $expected_status on the reference"
"$@" "$program" >"$out/stdout" 2>"$out/stderr"
status=$?
[ $status = $expected_status ] || fail "ends with status $status under the launcher"
diff "$out/expected" "$out/stdout" || fail "prints something else under the launcher"

name=${program##*/}
tail -n 2 "$out/stderr" | tr '\n' ';' |
  grep -Eqx "$name: [1-9][0-9]* SVE instructions executed;$name: [1-9][0-9]* Non-SVE AArch64 instructions executed;" ||
  fail "does not end with the two count lines"
