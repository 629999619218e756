#!/bin/bash
# Runs the launcher as a user does. Programs of each kind see the same start as without it, and each
# kind of bad input gets one line and the status that a shell would give.
#
# launcher_test.sh DIRECTORY LAUNCHER [EMULATOR...]: DIRECTORY has the programs show_start_KIND.
set -u
programs=$(cd "$1" && pwd)
launcher=$2
shift 2
# The programs get an environment of their own, without PATH.
emulator=()
if [ $# -gt 0 ]; then emulator=("$(command -v "$1")" "${@:2}"); fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0

fail() {
  echo "FAIL: $*"
  failures=$((failures + 1))
}

native() { env -i A=b "C=d e" "${emulator[@]}" "$@"; }
tessaly() { env -i A=b "C=d e" "${emulator[@]}" "$launcher" "$@"; }

# expect STATUS TEXT ARGUMENTS...: the launcher refuses, with TEXT in its one line.
expect() {
  local status=$1 text=$2
  shift 2
  tessaly "$@" >out 2>err </dev/null
  local got=$?
  [ $got -eq "$status" ] || fail "$*: status $got instead of $status ($(cat err))"
  [ "$(wc -l <err)" -eq 1 ] || fail "$*: not one line: $(cat err)"
  grep -q "^tessaly: .*$text" err || fail "$*: \"$text\" is not in: $(cat err)"
  [ ! -s out ] || fail "$*: wrote to standard output: $(cat out)"
}

# script STATUS TEXT LINE: the launcher refuses a script that begins with LINE.
script() {
  printf '%b' "$3" >wrong_script && chmod +x wrong_script
  expect "$1" "$2" ./wrong_script
}

same_start() {
  local kind=$1
  cp "$programs/show_start_$kind" show
  native ./show x "" "y z" >expected
  local expected_status=$?
  tessaly ./show x "" "y z" >actual 2>err
  local status=$?
  [ $expected_status -eq 42 ] || fail "$kind: without the launcher, status $expected_status"
  [ $status -eq 42 ] || fail "$kind: status $status: $(cat err)"
  diff expected actual || fail "$kind: the start differs from that without the launcher"
  ! grep NO expected || fail "$kind: the program itself is wrong"
}

for kind in static static_pie dynamic dynamic_fixed; do same_start $kind; done

tessaly ./show --random >first 2>err
tessaly ./show --random >second 2>err
! cmp -s first second || fail "random bytes are the same twice: $(cat first)"

tessaly ./show --overflow-stack >out 2>err
status=$?
[ $status -eq 139 ] || fail "overflowing the stack gives status $status, not SIGSEGV's"

# Scripts, and a script as a script's interpreter.
echo "#! ./show one  argument " >script && chmod +x script
printf '#!./script' >nested && chmod +x nested
tessaly ./nested x >out 2>err
[ $? -eq 42 ] || fail "a nested script: $(cat err)"
printf 'argument %s\n' ./show "one  argument" ./script ./nested x >expected
grep ^argument out | cmp - expected || fail "a nested script's arguments: $(cat out)"
grep -q "^auxiliary 31 ./nested" out || fail "a nested script's AT_EXECFN: $(grep 'y 31' out)"

# Files that are not there or may not be executed.
mkdir directory
echo text >text && chmod +x text
cp show unexecutable && chmod -x unexecutable
: >empty && chmod +x empty
mkfifo pipe && chmod +x pipe
expect 127 "./absent: no such file" ./absent
expect 127 "absent: not found in PATH" absent
expect 126 "./directory: a directory" ./directory
expect 126 "./unexecutable: permission denied" ./unexecutable
expect 126 "./show/x: Not a directory" ./show/x
expect 126 "./empty: an empty file" ./empty
expect 126 "./pipe: not a regular file" ./pipe
expect 126 "./text: neither an ELF program nor a script" ./text

expect 126 "this is tessaly itself" "$launcher" ./show

# Scripts without a usable interpreter.
script 127 "./wrong_script: interpreter /does/not/exist: no such file" '#!/does/not/exist\n'
script 126 "./wrong_script: .*names no interpreter" '#! \n'
script 126 "./wrong_script: scripts that interpret scripts" '#!./wrong_script\n'
script 126 "./text: neither" '#!./text\n'

# A damaged program, and one without its interpreter.
head -c 4000 show >truncated && chmod +x truncated
expect 126 "./truncated: damaged ELF file" ./truncated
expect 127 "interpreter /no/such/interpreter: no such file" "$programs/show_start_no_interpreter"

# A program whose fixed addresses are taken: the emulator puts the launcher there.
if [ ${#emulator[@]} -gt 0 ]; then
  expect 126 "it must be at 0x5500000000-.* is not available" "$programs/show_start_collision"
fi

# The command line and the client library.
expect 2 "no program given"
expect 125 "cannot load the client library: .*absent.so" -c ./absent.so -- ./show
expect 125 "cannot load the client library: .*text" -c text -- ./show
tessaly --help >out 2>err || fail "--help: $(cat err)"
grep -q "^Usage: tessaly .OPTIONS. PROGRAM" out || fail "--help prints $(cat out err)"
tessaly --version >out 2>err || fail "--version: $(cat err)"
grep -Eqx "tessaly [0-9.]+" out || fail "--version prints $(cat out err)"

# Vector lengths. A copy of the launcher has clients for two lengths, one of which has the wrong
# name, and a link to a client that is not there.
mkdir -p copy/bin copy/lib
cp "$launcher" copy/bin
built=$(dirname "$launcher")/../lib
ln -s "$built/libsve_client_512.so" copy/lib
ln -s "$built/libsve_client_512.so" copy/lib/libsve_client_640.so
ln -s "$work/no/such/client.so" copy/lib/libsve_client_256.so
touch copy/lib/libsve_client_100.so copy/lib/libsve_client_x.so
usual=$launcher
launcher=copy/bin/tessaly
tessaly --vl 512 ./show x "" "y z" >actual 2>err
[ $? -eq 42 ] || fail "--vl 512: $(cat err)"
present="there are clients for 512 and 640 bits; make"
expect 125 "no client for 256 bits; $present one by ./run --vl 256 PROGRAM$" --vl 256 ./show
for wrong in 100 64 2176 0 -512 0512 5x2 512.0 ""; do
  expect 2 "not \"$wrong\"; $present others by ./run --vl BITS PROGRAM$" --vl "$wrong" ./show
done
expect 125 "libsve_client_640.so emulates vectors of 512 bits instead of 640; " --vl 640 ./show
rm copy/lib/*
expect 125 "no client for 512 bits; there are no clients of other lengths; make" --vl 512 ./show
launcher=$usual

# The instruction table.
tessaly --list-instructions >out 2>err || fail "--list-instructions: $(cat err)"
line='00100101001010111000100mmmmddddd  B  VecU8QDecrSCount4PS  *UQDECP <Wdn>, <Pm>.B'
grep -qx "$line" out || fail "--list-instructions has no line \"$line\""
tessaly --disassemble 04a20020 0xd503201f >out 2>err || fail "--disassemble: $(cat err)"
printf '%s\n' \
  "04a20020  add z0.s, z1.s, z2.s                          VecU32AddVVX, served by a fast path" \
  "d503201f  no form in the instruction table has this word" | diff - out ||
  fail "--disassemble prints this"
expect 2 'hexadecimal, not "nop"; see tessaly --help' --disassemble 04a20020 nop

[ $failures -eq 0 ] || exit 1
echo "launcher_test: all as expected"
