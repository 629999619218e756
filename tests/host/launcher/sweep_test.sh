#!/bin/bash
# Runs tessaly-sweep on a program that depends on the vector length in various ways, and checks all
# that it prints.
#
# sweep_test.sh SWEEP PROGRAM ADVERTISED: there are clients for 512 and 2048 bits. ADVERTISED is
# process_sve.
set -u
sweep=$1 program=$2 advertised=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
cp "$program" program
failures=0

fail() {
  echo "FAIL: $*"
  failures=$((failures + 1))
}

# expect STATUS ARGUMENTS...: the sweep ends with STATUS, and prints what is on standard input.
input=/dev/null
expect() {
  local status=$1 got
  shift
  cat >expected
  "$sweep" "$@" >output 2>&1 <$input
  got=$?
  [ $got -eq "$status" ] || fail "tessaly-sweep $*: status $got instead of $status"
  diff expected output || fail "tessaly-sweep $*: it prints what is marked by >"
}

# sweep STATUS ARGUMENTS...: at 512 and 2048 bits.
sweep() {
  local status=$1
  shift
  expect "$status" --vl 512,2048 "$@"
}

# same ARGUMENTS...: the program does the same at both lengths.
same() {
  sweep 0 "$@" <<<"program does the same at 512 and 2048 bits."
}

# differs ARGUMENTS...: ./program does not. The differences are on standard input.
differs() {
  sweep 1 "$@" < <(
    echo "program does not do the same at 2048 bits as at 512 bits."
    echo "At 2048 bits:"
    cat
  )
}

# Programs that are agnostic of the length.
same ./program none
expect 0 --vl 2048,512,512 -- "$work/program" folder <<END
program does the same at 2048 and 512 bits.
END
sweep 0 ./program "same status" <<END
program does the same at 512 and 2048 bits and ends with status 125.
END
sweep 0 --executable ./program no/such/name none <<END
name does the same at 512 and 2048 bits.
END

# Programs that are not.
differs ./program length <<END
  standard output differs first at byte 7, line 2
     512 bits: 64 bytes
    2048 bits: 256 bytes
END
differs ./program length 102 <<END
  standard output differs first at byte 106, line 2
     512 bits: ...$(printf '%62s' 64) bytes
    2048 bits: ...$(printf '%62s' 256) bytes
END
differs ./program lines <<END
  standard output differs first at byte 9, line 5
     512 bits: (the end)
    2048 bits: 4
END
differs ./program binary <<END
  standard output differs first at byte 3, line 2
END
same ./program file
differs --output traces --output result ./program file <<END
  result differs first at byte 1, line 1
     512 bits: 64
    2048 bits: 256
tessaly-sweep: program writes no file traces
END
differs --output short --output long ./program files <<END
  short is not written, but it is at 512 bits
  long is written, but it is not at 512 bits
END
differs ./program status <<END
  the status is 3, but 125 at 512 bits
END
differs ./program abort <<END
  the status is 134 (SIGABRT), but 0 at 512 bits
END
sweep 1 --advertise-sve "$advertised" 64 <<END
process_sve does not do the same at 2048 bits as at 512 bits.
At 2048 bits:
  the status is 7, but 0 at 512 bits
  standard output differs first at byte 1, line 1
     512 bits: (the end)
    2048 bits: length: 256 instead of 64
END
"$sweep" --vl 512,2048 ./program process >output
[ $? -eq 1 ] || fail "the numbers of processes do not differ"
[ "$(tail -n 1 output)" = \
  "Two runs at 512 bits differ, too, so the vector length may not be the reason." ] ||
  fail "a program that differs from itself: $(cat output)"

# Each run reads all of a file on standard input. A terminal or a pipe is not read.
echo text >some_text
input=some_text
same ./program input
mkfifo pipe
sleep 60 >pipe &
input=pipe
same ./program input
kill $!
input=/dev/null

# What cannot be run.
launcher_failed="tessaly-sweep: absent could not be run at 512 bits:"
sweep 125 absent <<END
$launcher_failed absent: not found in PATH; a program elsewhere needs a path with a slash
END
sweep 125 ./absent <<END
$launcher_failed $work/absent: no such file
END

# A folder of clients outside of a build. It also has a link to a file that is not there.
mkdir -p elsewhere/bin elsewhere/lib
cp "$sweep" "$(dirname "$sweep")/tessaly" elsewhere/bin
for bits in 512 2048; do
  ln -s "$(dirname "$sweep")/../lib/libsve_client_$bits.so" elsewhere/lib
done
ln -s libsve_client.so elsewhere/lib/libsve_client_1920.so
built=$sweep
sweep=elsewhere/bin/tessaly-sweep
expect 0 ./program none <<END
program does the same at 512 and 2048 bits.
END
expect 125 --vl 512,1920,384 ./program none <<END
tessaly-sweep: there is no client for 1920 and 384 bits in $work/elsewhere/lib; there are clients for 512 and 2048
END
rm elsewhere/lib/libsve_client_512.so
expect 2 ./program none <<END
tessaly-sweep: there are not two lengths to compare; name some, as in --vl 128,512,2048; see tessaly-sweep --help
END
sweep=$built

# refuse TEXT ARGUMENTS...: a wrong command line gets one line, which TEXT begins.
refuse() {
  local text=$1 got
  shift
  "$sweep" "$@" >output 2>&1 </dev/null
  got=$?
  [ $got -eq 2 ] || fail "tessaly-sweep $*: status $got instead of 2"
  [ "$(wc -l <output)" -eq 1 ] || fail "tessaly-sweep $*: not one line: $(cat output)"
  [[ $(cat output) == "$text"* ]] || fail "tessaly-sweep $*: $(cat output)"
}
refuse "tessaly-sweep: no program given; see" --vl 512,2048
for wrong in 512,100 512,abc 512,,1920 4096 0 "" 512,-128; do
  rule="multiples of 128 from 128 to 2048, separated by commas"
  refuse "tessaly-sweep: --vl needs $rule, not \"$wrong\"" --vl "$wrong" ./program
done
refuse "tessaly-sweep: --vl needs a value" --vl
refuse "tessaly-sweep: --output needs a value" --output
for wrong in /tmp/x ../x a/../x ""; do
  refuse "tessaly-sweep: --output needs a file in the folder of the run, not \"$wrong\"" \
    --output "$wrong" ./program
done
refuse "tessaly-sweep: there are not two lengths" --vl 512,512 ./program
refuse "tessaly-sweep: -c chooses one client library" --vl 512,2048 -c client.so -- ./program
refuse "tessaly: unknown option --advertise; see" --vl 512,2048 --advertise ./program
refuse "tessaly-sweep: program writes no file absent" --vl 512,2048 --output absent ./program none
"$sweep" --help | grep -q "^Usage: tessaly-sweep .--vl LIST" || fail "--help prints no usage"

[ $failures -eq 0 ] || exit 1
echo "sweep_test: all as expected"
