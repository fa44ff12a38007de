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
if [ "$status" -eq 0 ] && grep -Eq '^Totals: [0-9]+ passed, 0 failed, [1-9][0-9]* skipped' "$log"; then
    exit 77
fi
exit "$status"
