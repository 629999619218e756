#!/bin/bash
# same.sh COMPARE... --- BUILD...: builds a program as build.sh does, without its OUTPUT, and compares
# its runs as tests/tools/compare.sh does with the words COMPARE.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
compare=()
while [ "$1" != --- ]; do
  compare+=("$1")
  shift
done
shift
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT
"$here/build.sh" "$work/program" "$@" || exit
"$here/../tools/compare.sh" "${compare[@]}" -- "$work/program"
