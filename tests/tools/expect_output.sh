#!/bin/bash
# expect_output.sh FILE COMMAND...: fails unless the command succeeds and prints what FILE has.
# Status 77: the command has said why it cannot run here.
set -u
expected=$1
shift
errors=$(mktemp) || exit 2
trap 'rm "$errors"' EXIT
output=$("$@" 2>"$errors" && echo .)
status=$?
if [ $status -ne 0 ]; then
  cat "$errors" >&2
  exit $status
fi
diff "$expected" - <<<"${output%$'\n'.}"
