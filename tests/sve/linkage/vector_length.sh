#!/usr/bin/env bash
# An object that was compiled for the library's vector length links with the library. One that was
# compiled for another does not, and the linker names the length that the object has.
#
#   vector_length.sh LIBRARY GENERATED-HEADERS SOURCES BITS COMPILER FLAGS...
set -euo pipefail
library=$1 headers=$2 sources=$3 bits=$4
shift 4

other=$((bits == 256 ? 512 : 256))
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
mkdir -p "$directory/sve/state"
sed "s/$bits/$other/g" "$headers/sve/state/configured_length.h" \
  >"$directory/sve/state/configured_length.h"

program='#include "sve/state/cpu_state.h"
int main() { return sizeof(cpu_state) == 0; }'

# link HEADERS COMPILER FLAGS...
link() {
  local headers=$1
  shift
  "$@" -std=gnu++20 -I"$headers" -I"$sources" -x c++ - -x none "$library" \
    -o "$directory/program" <<<"$program" >"$directory/messages" 2>&1
}

if ! link "$headers" "$@"; then
  cat "$directory/messages"
  echo "an object for $bits bits does not link with the library for $bits bits"
  exit 1
fi
if link "$directory" "$@"; then
  echo "an object for $other bits links with the library for $bits bits"
  exit 1
fi
cat "$directory/messages"
grep -q "undefined reference to .sve_library_of_${other}_bits'" "$directory/messages"
