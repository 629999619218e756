#!/bin/bash
# expect.sh STATUS STDERR COMMAND...: fails unless the command ends with the status, and the
# extended regular expression STDERR is all of what it prints on standard error, with ; for ends of
# lines.
# Status 128 + n is that of a shell for signal n.
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
