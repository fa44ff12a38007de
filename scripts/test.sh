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
ctest --test-dir "$build_dir" --output-on-failure --parallel "$(nproc)" "$@"
