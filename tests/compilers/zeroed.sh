#!/bin/bash
# zeroed.sh COMPILER REFERENCE... -- LAUNCHER...: zeroed.c, built by a compiler that clears a Z
# register by a write of its V register, is wrong without an option, --warn-v-writes says so once,
# and --architectural makes it right.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
compiler=$1
shift
reference=()
while [ "$1" != -- ]; do
  reference+=("$1")
  shift
done
shift
launcher=("$@")
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT
fail() {
  echo "zeroed: $1" >&2
  cat "$work/stderr" >&2
  exit 1
}
warnings() { grep -c '^Warning: .* reads all of z[0-9]* after the program wrote v' "$work/stderr"; }

command -v "$compiler" >/dev/null || {
  echo "skipped: there is no $compiler" >&2
  exit 77
}
linker=aarch64-linux-gnu-gcc
[ "$(uname -m)" != aarch64 ] || linker=gcc
"$compiler" --target=aarch64-linux-gnu -O2 -march=armv8.2-a+sve -fno-vectorize -c "$here/zeroed.c" \
  -o "$work/zeroed.o"
"$linker" -static "$work/zeroed.o" -o "$work/zeroed"
"${linker%gcc}objdump" -d --disassemble=sum "$work/zeroed" >"$work/code"
: >"$work/stderr"
grep -q 'movi.*v[0-9]*\.2d, #0x0' "$work/code" || fail "$compiler does not use movi"
"${reference[@]}" "$work/zeroed" >"$work/expected"
"${launcher[@]}" "$work/zeroed" >"$work/plain" 2>"$work/stderr"
! cmp -s "$work/expected" "$work/plain" || fail "it is right without an option"
[ "$(warnings)" -eq 0 ] || fail "it warns without being asked"
"${launcher[@]}" --warn-v-writes "$work/zeroed" >"$work/warned" 2>"$work/stderr"
cmp "$work/plain" "$work/warned" || fail "--warn-v-writes changes what the program does"
[ "$(warnings)" -eq 1 ] || fail "--warn-v-writes prints $(warnings) warnings"
"${launcher[@]}" --architectural "$work/zeroed" >"$work/right" 2>"$work/stderr"
cmp "$work/expected" "$work/right" || fail "it is wrong with --architectural"
[ "$(warnings)" -eq 0 ] || fail "it warns with --architectural"
