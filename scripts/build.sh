#!/bin/sh
# build.sh PRESET [TARGET...]: configures the preset where that is needed, and builds the targets, or
# all. Speaks only if something has to be done or fails.
set -eu
cd "$(dirname "$0")/.."
preset=$1
shift
log=build/$preset.log
mkdir -p build
# Ninja configures again by itself when a CMake file changes, but not when the presets do.
if [ -z "$(find "build/$preset/build.ninja" -newer CMakePresets.json 2>/dev/null)" ]; then
  echo "build: configuring $preset" >&2
  cmake --preset "$preset" >"$log" 2>&1 || {
    cat "$log" >&2
    exit 1
  }
fi
if ninja -C "build/$preset" -n "$@" 2>/dev/null | grep -q "no work to do"; then exit 0; fi
echo "build: building $preset" >&2
exec ninja -C "build/$preset" -j "$(nproc)" "$@" >&2
