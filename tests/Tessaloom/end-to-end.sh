#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Starts the real program in a real X server (Xvfb), waits for its main window to be
# mapped, saves a screenshot of the screen, then stops the program.
#   end-to-end.sh BINARY SCREENSHOT.png
set -euo pipefail
binary=$1
screenshot=$2

sandbox=$(mktemp -d)
trap 'rm -rf "$sandbox"' EXIT
export HOME=$sandbox/home XDG_CONFIG_HOME=$sandbox/config XDG_DATA_HOME=$sandbox/data XDG_CACHE_HOME=$sandbox/cache
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME"
unset QT_QPA_PLATFORM WAYLAND_DISPLAY
# Every outside service points at a closed port of this machine: the program's daily
# catalog check and any picture or update request fail at once instead of leaving it.
endpoints=()
for service in rebrickable bricklink bricklinkImages brickeconomy brickset brickowl ebay rapidapi lego updates; do
    endpoints+=("$service=http://127.0.0.1:9")
done
TESSALOOM_ENDPOINTS=$(IFS=';'; echo "${endpoints[*]}")
export TESSALOOM_ENDPOINTS

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
