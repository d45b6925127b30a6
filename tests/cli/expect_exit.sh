#!/bin/sh
# expect_exit.sh STATUS COMMAND...: runs COMMAND and passes when it exits with STATUS.
want=$1; shift
"$@" >/dev/null 2>&1
got=$?
[ "$got" -eq "$want" ] && exit 0
echo "expected exit status $want, got $got: $*" >&2
exit 1
