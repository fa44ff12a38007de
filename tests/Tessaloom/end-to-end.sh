#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Starts the real program in a real X server (Xvfb), waits for its main window to be
# mapped, saves a screenshot of the screen, then stops the program.
#   end-to-end.sh BINARY SCREENSHOT.png
set -euo pipefail
binary=$1
screenshot=$2

# shellcheck source=end-to-end-sandbox.sh
source "$(dirname "${BASH_SOURCE[0]}")/end-to-end-sandbox.sh"

# shellcheck disable=SC2016
xvfb-run --auto-servernum --server-args="-screen 0 1400x900x24" bash -c '
    set -euo pipefail
    "$1" > "$3/app.log" 2>&1 &
    app=$!
    if ! window=$(timeout 60 xdotool search --sync --onlyvisible --name "^Tessaloom$" | head -n 1); then
        echo "The main window did not appear within 60 seconds." >&2
        cat "$3/app.log" >&2
        kill "$app" 2>/dev/null || true
        exit 1
    fi
    sleep 1 # let the first frame paint
    import -window root "$2"
    kill -TERM "$app"
    wait "$app" || true
' _ "$binary" "$screenshot" "$sandbox"

size=$(identify -format "%wx%h" "$screenshot")
[ "$size" = "1400x900" ] || { echo "Unexpected screenshot size: $size" >&2; exit 1; }
echo "Main window shown; screenshot saved to $screenshot"
