#!/bin/sh
# setup.sh [run|check|all|bench]: installs what is missing on this machine, and nothing else. "run"
# installs what you need to build the product. "check" adds the needs of the tests of ./check, and
# "all" those of the other tests. "all" also fetches programs and a kernel into build/real_programs
# and build/kernel. "bench" installs what bench/floating_point needs. If nothing is missing, it does
# nothing.
set -eu

missing_commands=
missing_packages=

# need COMMAND-OR-FILE PACKAGE
need() {
  case $1 in
    /*) [ -e "$1" ] && return 0 ;;
    *) command -v "$1" >/dev/null 2>&1 && return 0 ;;
  esac
  case " $missing_packages " in *" $2 "*) return 0 ;; esac
  missing_commands="$missing_commands $1"
  missing_packages="$missing_packages $2"
}

fail() {
  echo "setup: $*" >&2
  exit 1
}

find_missing_for_run() {
  need cmake cmake
  need ninja ninja-build
  need /usr/include/stb/stb_image_write.h libstb-dev
  case $(uname -m) in
    x86_64)
      need aarch64-linux-gnu-g++ g++-aarch64-linux-gnu
      need /usr/aarch64-linux-gnu/lib/libc.so.6 libc6-dev-arm64-cross
      need qemu-aarch64 qemu-user
      ;;
    aarch64) need g++ g++ ;;
    *) fail "this is a $(uname -m) machine, but x86-64 or AArch64 is needed" ;;
  esac
}

find_missing_for_check() {
  find_missing_for_run
  need g++ g++
  need git git
  need /usr/src/googletest/CMakeLists.txt googletest
  need qemu-aarch64 qemu-user
  need clang-format clang-format
  need clang-tidy clang-tidy
  need python3 python3
}

find_missing_for_all() {
  find_missing_for_check
  need qemu-system-aarch64 qemu-system-arm
  need cpio cpio
  need /usr/sbin/debootstrap debootstrap
  need mmdebstrap mmdebstrap
  need newuidmap uidmap
}

find_missing_for_bench() {
  need g++ g++
  need "/usr/lib/llvm-14/lib/clang/14.0.6/lib/linux/libclang_rt.builtins-$(uname -m).a" \
    libclang-rt-14-dev
}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

install_packages() {
  as_root apt-get update -q >&2
  as_root env DEBIAN_FRONTEND=noninteractive \
    apt-get install -q -y --no-install-recommends "$@" >&2
}

install_missing() {
  command -v apt-get >/dev/null 2>&1 ||
    fail "missing:$missing_commands. There is no apt-get to install them with. On Debian 12 they" \
      "are in the packages$missing_packages"
  [ "$(id -u)" -eq 0 ] || command -v sudo >/dev/null 2>&1 ||
    fail "packages are missing, but you are not root, and there is no sudo. As root, run:" \
      "apt-get install$missing_packages"
  echo "setup: installing$missing_packages" >&2
  # shellcheck disable=SC2086
  install_packages $missing_packages
  missing_commands=
  missing_packages=
  "find_missing_for_$1"
  [ -z "$missing_commands" ] || fail "still missing after the installation:$missing_commands"
}

purpose=${1:-run}
"find_missing_for_$purpose"
[ -z "$missing_packages" ] || install_missing "$purpose"
if [ "$purpose" = all ]; then
  # Debian has newer compilers in its updates only. If they cannot be installed, the tests that need
  # them are skipped.
  for compiler in clang-19 clang-22; do
    command -v $compiler >/dev/null 2>&1 || install_packages $compiler ||
      echo "setup: $compiler cannot be installed; its tests will be skipped" >&2
  done
  root=$(dirname "$0")/..
  # If these programs cannot be fetched, the tests that need them are skipped.
  for suite in real_programs kernel; do
    "$root/tests/$suite/fetch" "$root/build/$suite" || [ $? -eq 77 ]
  done
fi
