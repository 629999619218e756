#!/bin/bash
# What ./run builds before it runs a program. A copy of it runs here, beside commands that only note
# how they are called.
#
# run_test.sh SOURCES
set -u
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
mkdir -p commands scripts build/aarch64/bin
cp "$1/run" .
cp "$1/scripts/clients.sh" scripts
export calls=$work/calls cache=$work/build/aarch64/CMakeCache.txt
failures=0

# fake COMMAND: it runs the script on standard input.
fake() {
  { echo "#!/bin/bash" && cat; } >"$1"
  chmod +x "$1"
}
fake scripts/setup.sh </dev/null
fake commands/uname <<<"echo aarch64"
fake scripts/build.sh <<'END'
echo build "$@" >>"$calls"
END
fake build/aarch64/bin/tessaly <<'END'
echo run "$@" >>"$calls"
END
# cmake BUILD -DTESSALY_VECTOR_LENGTHS=LIST
fake commands/cmake <<'END'
echo cmake "$@" >>"$calls"
echo "TESSALY_VECTOR_LENGTHS:STRING=${2#*=}" >"$cache"
END
# ninja -C BUILD -t query TARGET
fake commands/ninja <<'END'
[ "$5" = sve_client_1920 ] || grep -Eq "[=;]${5#sve_client_}(;|$)" "$cache"
END
PATH=$work/commands:$PATH
echo TESSALY_VECTOR_LENGTHS:STRING= >"$cache"

# expect ARGUMENTS...: ./run makes the calls on standard input. The last of them runs the launcher
# with the same arguments.
expect() {
  : >"$calls"
  ./run "$@" 2>messages || { echo "FAIL: ./run $*: status $?: $(cat messages)" && failures=1; }
  { cat && echo run "$@"; } | diff - "$calls" && return
  echo "FAIL: ./run $* makes the calls marked by >"
  failures=1
}

expect program --vl 512 <<<"build aarch64 tessaly sve_client"
expect --advertise-sve -- --vl 512 <<<"build aarch64 tessaly sve_client"
expect --executable --vl 512 program <<<"build aarch64 tessaly sve_client"
expect --vl 512 program <<END
build aarch64 tessaly
cmake build/aarch64 -DTESSALY_VECTOR_LENGTHS=512
build aarch64 sve_client_512
END
expect --advertise-sve --executable file --vl 256 program --vl 1024 <<END
build aarch64 tessaly
cmake build/aarch64 -DTESSALY_VECTOR_LENGTHS=512;256
build aarch64 sve_client_256
END
for bits in 512 1920; do
  expect --vl $bits -- program <<END
build aarch64 tessaly
build aarch64 sve_client_$bits
END
done
for wrong in 100 0 2176 x 0512 -512 12345678901234567890; do
  expect --vl $wrong program <<<"build aarch64 tessaly"
done

[ $failures -eq 0 ] || exit 1
echo "run_test: all as expected"
