#!/bin/bash
# same.sh COMPARE... --- COMPILER SOURCE FLAGS... -- LIBRARIES...: builds a static program for AArch64
# with one of Debian's compilers, and compares its runs as tests/tools/compare.sh does with the words
# COMPARE. If --architectural is among them, --warn-v-writes must tell where it is needed. Status 77:
# there is no such compiler.
set -eu
compare=() build=()
while [ "$1" != --- ]; do
  compare+=("$1")
  shift
done
shift
compiler=$1
shift
while [ "$1" != -- ]; do
  build+=("$1")
  shift
done
shift

command -v "$compiler" >/dev/null || {
  echo "skipped: there is no $compiler" >&2
  exit 77
}
linker=aarch64-linux-gnu-g++
[ "$(uname -m)" != aarch64 ] || linker=g++
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT
"$compiler" --target=aarch64-linux-gnu "${build[@]}" -c -o "$work/program.o"
"$linker" -static "$work/program.o" "$@" -lm -o "$work/program"
tool=$(dirname "$0")/../tools/compare.sh
"$tool" "${compare[@]}" -- "$work/program"

# Without --architectural the program may do something else, but then --warn-v-writes warns, once.
[[ " ${compare[*]} " == *" --architectural "* ]] || exit 0
"$tool" "${compare[@]/#--architectural/--warn-v-writes}" -- "$work/program" >"$work/said" 2>&1 ||
  [ "$(grep -c '^Warning: ' "$work/said")" -eq 1 ] || {
  echo "it is wrong without --architectural, and --warn-v-writes does not warn once:" >&2
  cat "$work/said" >&2
  exit 1
}
