#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Takes the README's and the software centres' picture of the main window: starts the
# built program offscreen on its sample catalog, with an empty temporary HOME and every
# outside service pointed at a closed local port, and saves the window (1280x800) to
# docs/screenshots/main-window.png. Needs a build (scripts/setup.sh), no display.
#   scripts/screenshot.sh [OUT.png]
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=${TESSALOOM_BUILD_DIR:-$root/build}
output=$(realpath -m "${1:-$root/docs/screenshots/main-window.png}")

sandbox=$(mktemp -d)
trap 'rm -rf "$sandbox"' EXIT
export HOME=$sandbox/home XDG_CONFIG_HOME=$sandbox/config XDG_DATA_HOME=$sandbox/data
export XDG_CACHE_HOME=$sandbox/cache XDG_RUNTIME_DIR=$sandbox/runtime
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME"
mkdir -m 700 "$XDG_RUNTIME_DIR"
endpoints=()
for service in rebrickable bricklink bricklinkImages brickeconomy brickset brickowl ebay rapidapi lego updates; do
    endpoints+=("$service=http://127.0.0.1:9")
done
TESSALOOM_ENDPOINTS=$(IFS=';'; echo "${endpoints[*]}")
export TESSALOOM_ENDPOINTS QT_QPA_PLATFORM=offscreen

mkdir -p "$(dirname "$output")"
"$build_dir/bin/tessaloom" --screenshot "$output" 2>"$sandbox/app.log" || { cat "$sandbox/app.log" >&2; exit 1; }
