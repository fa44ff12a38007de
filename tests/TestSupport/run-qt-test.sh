#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs one Qt Test executable for CTest. Qt Test ends with status 0 when test functions
# were skipped, so CTest would count them as passed; a run that skipped something and
# failed nothing ends here with status 77 instead, which CTest reports as a skipped test.
# An executable therefore either runs whole or skips whole: tests that may skip (those
# needing the full-size dumps) live in executables of their own.
#   run-qt-test.sh EXECUTABLE [ARGUMENTS...]
set -uo pipefail
log=$(mktemp)
trap 'rm -f "$log"' EXIT
"$@" 2>&1 | tee "$log"
status=${PIPESTATUS[0]}
# No test talks to a host other than this machine (TestEnvironment blocks and names them).
if grep -q 'Blocked a connection to' "$log"; then
    echo "This test tried to reach a host other than 127.0.0.1:" >&2
    grep 'Blocked a connection to' "$log" | sort -u >&2
    exit 1
fi
if [ "$status" -eq 0 ] && grep -Eq '^Totals: [0-9]+ passed, 0 failed, [1-9][0-9]* skipped' "$log"; then
    exit 77
fi
exit "$status"
