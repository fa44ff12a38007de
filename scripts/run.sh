#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Sets everything up (system packages, configure, build) and starts Tessaloom.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=${TESSALOOM_BUILD_DIR:-$root/build}

"$root/scripts/setup.sh"

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    echo "Tessaloom is built, but this session has no graphical display (DISPLAY and WAYLAND_DISPLAY are unset), so its window cannot open here: run this command from a desktop session." >&2
    exit 1
fi
exec "$build_dir/bin/tessaloom" "$@"
