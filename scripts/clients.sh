#!/bin/sh
# clients.sh BITS...: makes the clients for these vector lengths in build/aarch64, if they are not
# there or are older than their sources. A length that the build does not have yet goes into its
# TESSALY_VECTOR_LENGTHS, beside those of earlier calls. The script leaves out what is no vector
# length, and the launcher refuses that. It prints something only if there is something to do or if
# it fails.
set -eu
cd "$(dirname "$0")/.."
build=build/aarch64
log=build/aarch64.log

is_vector_length() {
  case $1 in "" | 0* | *[!0-9]* | ?????*) return 1 ;; esac
  [ "$1" -le 2048 ] && [ $(($1 % 128)) -eq 0 ]
}

is_in_build() { ninja -C $build -t query "sve_client_$1" >/dev/null 2>&1; }

scripts/build.sh aarch64 tessaly
targets=
lengths=$(sed -n 's/^TESSALY_VECTOR_LENGTHS:[A-Z]*=//p' $build/CMakeCache.txt)
known_lengths=$lengths
for bits; do
  is_vector_length "$bits" || continue
  targets="$targets sve_client_$bits"
  is_in_build "$bits" || lengths="${lengths:+$lengths;}$bits"
done
[ -n "$targets" ] || exit 0
if [ "$lengths" != "$known_lengths" ]; then
  echo "build: configuring aarch64 for more vector lengths" >&2
  cmake $build "-DTESSALY_VECTOR_LENGTHS=$lengths" >$log 2>&1 || {
    cat $log >&2
    exit 1
  }
fi
# shellcheck disable=SC2086
exec scripts/build.sh aarch64 $targets
