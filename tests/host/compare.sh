#!/bin/bash
# compare.sh [EMULATOR...] -- LAUNCHER CLIENT PROGRAM [ARGUMENTS]
#
# Runs a program alone and under the launcher. Standard output and exit status must be the same.
# There is no EMULATOR on an AArch64 machine. Status 77: it cannot run the program here, and has said
# why.
emulator=()
while [ "$1" != -- ]; do
  emulator+=("$1")
  shift
done
launcher=$2 client=$3
shift 3
work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT
"${emulator[@]}" "$@" >"$work/alone"
alone=$?
[ $alone -ne 77 ] || exit 77
"${emulator[@]}" "$launcher" -c "$client" -- "$@" >"$work/launched"
launched=$?
if [ $alone -ne $launched ]; then
  echo "exit status $alone alone, $launched under the launcher"
  exit 1
fi
diff "$work/alone" "$work/launched" && [ -s "$work/alone" ]
