#!/bin/bash
# unwritten_row.sh RUN_WORD LAUNCHER...: an instruction form that is known but not written is
# reported, and the program goes on behind it. Ends with status 77 if all forms are written.
set -u
run_word=$1
shift
pattern=$("$@" --list-instructions | awk '/not written/ { print $1; exit }')
[ -n "$pattern" ] || exit 77
word=$(printf '%08x' $((2#${pattern//[a-z]/0})))

message="Error: failed to emulate SVE instruction 0x$word at PC 0x[0-9a-f]+"
count="program_run_word: 0 SVE instructions executed"
bash "${BASH_SOURCE%/*}/../expect.sh" 0 "$message;$count;[^;]*;" "$@" "$run_word" "$word" |
  grep -qx "x0 is 0"
