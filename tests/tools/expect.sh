#!/bin/bash
# expect.sh STATUS STDERR COMMAND...: fails unless the command ends with STATUS, and STDERR matches
# all that it prints on standard error. STDERR is an extended regular expression. In it, ; stands
# for the end of a line. For signal n, STATUS is 128 + n, as in a shell.
set -u
expected_status=$1 expected=$2
shift 2
{ stderr=$("$@" 2>&1 >&3 3>&-); status=$?; } 3>&1
if [ $status != "$expected_status" ]; then
  echo "status $status instead of $expected_status: $stderr" >&2
  exit 1
fi
grep -Eqx "$expected" <<<"${stderr:+${stderr//$'\n'/;};}" && exit 0
printf 'standard error is\n%s\ninstead of\n%s\n' "$stderr" "${expected//;/$'\n'}" >&2
exit 1
