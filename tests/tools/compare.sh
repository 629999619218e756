#!/bin/bash
# compare.sh [--counts] REFERENCE... -- LAUNCHER... -- PROGRAM [ARGUMENTS]
#
# Runs a program by the command REFERENCE, and under the launcher by the command LAUNCHER, each time
# in an empty directory. Exit status, standard output and the files that it writes must be the same,
# byte for byte, and it must print something. With --counts it must also succeed, and standard error
# under the launcher must end with the two count lines. All paths are absolute.
#
# Status 77: the program cannot run here. REFERENCE has said why.
set -u
counts=
if [ "$1" = --counts ]; then
  counts=1
  shift
fi
reference=() launcher=()
for list in reference launcher; do
  declare -n words=$list
  while [ "$1" != -- ]; do
    words+=("$1")
    shift
  done
  shift
done

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
  "$@" >stdout 2>"$out/stderr"
  status=$?
  echo $status >status
}

program=$1
run expected "${reference[@]}" "$@"
if [ $status -eq 77 ]; then
  cat "$out/stderr" >&2
  exit 77
fi
[ -z "$counts" ] || [ $status -eq 0 ] || fail "ends with status $status on the reference"
[ -s stdout ] || fail "prints nothing"
run launched "${launcher[@]}" -- "$@"
diff -r "$out/expected" "$out/launched" || fail "does something else under the launcher"
[ -n "$counts" ] || exit 0

name=${program##*/}
tail -n 2 "$out/stderr" | tr '\n' ';' |
  grep -Eqx "$name: [1-9][0-9]* SVE instructions executed;$name: [1-9][0-9]* Non-SVE AArch64 instructions executed;" ||
  fail "does not end with the two count lines"
