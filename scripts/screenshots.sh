#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Takes the README's and the software centres' pictures of the main screens (collection
# grid, catalog table, theme browser, catalog set-up sheet) and saves them under
# docs/screenshots/: builds the program and the collection maker when needed
# (scripts/setup.sh installs what they need), then runs the end-to-end script that starts
# the program in Xvfb under openbox, on the sample catalog and a small made-up collection,
# with every outside service pointed at a closed local port. Needs no display.
#   scripts/screenshots.sh [OUTPUT_DIRECTORY]
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=${TESSALOOM_BUILD_DIR:-$root/build}
output=$(realpath -m "${1:-$root/docs/screenshots}")

"$root/scripts/setup.sh"
cmake --build "$build_dir" --target Tessaloom screenshot-collection
"$root/tests/Tessaloom/screenshots.sh" "$build_dir/bin/tessaloom" \
    "$build_dir/tests/Tessaloom/screenshot-collection" "$output"
