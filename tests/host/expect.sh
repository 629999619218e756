#!/bin/sh
# expect.sh STATUS PATTERN COMMAND...
#
# Runs a command. Its exit status must be STATUS (128 and the number for a signal), and a line of
# its standard error must match the extended regular expression PATTERN; an empty PATTERN asks for
# no line of the launcher's there.
status=$1 pattern=$2
shift 2
errors=$(mktemp) || exit 1
trap 'rm -f "$errors"' EXIT
"$@" 2>"$errors"
got=$?
cat "$errors"
if [ $got -ne "$status" ]; then
  echo "exit status $got, not $status"
  exit 1
fi
if [ -n "$pattern" ]; then
  grep -Eq "$pattern" "$errors"
else
  ! grep -q '^tessaly:' "$errors"
fi
