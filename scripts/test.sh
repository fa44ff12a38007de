#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Sets everything up (system packages, configure, build) and runs the whole test suite,
# ending with CTest's summary. Widgets run offscreen; the end-to-end check starts its own
# X server under xvfb-run, so no display is needed.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=${TESSALOOM_BUILD_DIR:-$root/build}

"$root/scripts/setup.sh"

export QT_QPA_PLATFORM=offscreen
summary=$(mktemp)
trap 'rm -f "$summary"' EXIT
set +e
ctest --test-dir "$build_dir" --output-on-failure --parallel "$(nproc)" "$@" 2>&1 | tee "$summary"
status=${PIPESTATUS[0]}
set -e

# One closing line on what did not run and why: CTest lists the skipped tests, and the
# tests' own log holds the reason each one gave.
skipped=$(grep -c '(Skipped)$' "$summary" || true)
if [ "${skipped:-0}" -gt 0 ]; then
    reasons=$(grep -E '^SKIP +: ' "$build_dir/Testing/Temporary/LastTest.log" 2>/dev/null \
        | sed -E 's/^SKIP +: [^ ]+ //' | sort -u | paste -sd ';' - | sed 's/;/; /g')
    echo "Skipped: ${skipped} test(s), because: ${reasons:-no reason given}"
else
    echo "Skipped: none"
fi
exit "$status"
