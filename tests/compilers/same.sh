#!/bin/bash
# same.sh COMPARE... --- COMPILER SOURCE FLAGS... -- LIBRARIES...: builds a static program for AArch64
# with one of Debian's compilers, and compares its runs as tests/tools/compare.sh does with the words
# COMPARE. Status 77: there is no such compiler.
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
"$(dirname "$0")/../tools/compare.sh" "${compare[@]}" -- "$work/program"
