#!/bin/sh
# build.sh [--with-tests] PRESET [TARGET...]: configures the preset if necessary, and builds the
# targets, or all of them if none is given. Without --with-tests, it does not look for what the
# tests need. But a build directory that was configured with tests keeps them. The script prints
# something only if there is something to do or if it fails.
set -eu
cd "$(dirname "$0")/.."
testing=OFF
if [ "$1" = --with-tests ]; then
  testing=ON
  shift
fi
preset=$1
shift
directory=build/$preset
log=build/$preset.log
mkdir -p build

# Ninja configures again by itself when a CMake file changes, but not when the presets change. If
# the cache is newer than build.ninja, the last configuration failed.
is_configured() {
  [ "$directory/build.ninja" -nt CMakePresets.json ] || return 1
  [ "$directory/build.ninja" -nt "$directory/CMakeCache.txt" ] || return 1
  [ $testing = OFF ] || grep -qx 'BUILD_TESTING:BOOL=ON' "$directory/CMakeCache.txt"
}

if ! is_configured; then
  echo "build: configuring $preset" >&2
  cmake --preset "$preset" -DBUILD_TESTING=$testing >"$log" 2>&1 || {
    cat "$log" >&2
    exit 1
  }
fi
if ninja -C "$directory" -n "$@" 2>/dev/null | grep -q "no work to do"; then exit 0; fi
echo "build: building $preset" >&2
exec ninja -C "$directory" -j "$(nproc)" "$@" >&2
