#!/bin/bash
# build.sh OUTPUT COMPILER SOURCE FLAGS... [-- LIBRARIES...]: builds a static program for AArch64 with
# one of Debian's compilers. Status 77: there is no such compiler.
set -eu
output=$1 compiler=$2 source=$3
shift 3
flags=()
while [ $# -gt 0 ] && [ "$1" != -- ]; do
  flags+=("$1")
  shift
done
[ $# -eq 0 ] || shift

command -v "$compiler" >/dev/null || {
  echo "skipped: there is no $compiler" >&2
  exit 77
}
linker=aarch64-linux-gnu-g++
[ "$(uname -m)" != aarch64 ] || linker=g++
"$compiler" --target=aarch64-linux-gnu "${flags[@]}" -c "$source" -o "$output.o"
"$linker" -static "$output.o" "$@" -lm -o "$output"
