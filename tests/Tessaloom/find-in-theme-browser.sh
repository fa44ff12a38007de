#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Ctrl+F over the theme browser as a user presses it: the real program in a real X server
# (Xvfb) with a window manager (openbox), keys sent by xdotool. The typed text must land
# in the browser's search field, and the browser must stay on show; before, the keys went
# to the table's type-ahead, which picked a theme and left the browser.
#   find-in-theme-browser.sh BINARY
set -euo pipefail
binary=$1

for tool in xvfb-run xdotool xprop xwininfo openbox; do
    command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
done

# shellcheck source=end-to-end-sandbox.sh
source "$(dirname "${BASH_SOURCE[0]}")/end-to-end-sandbox.sh"
mkdir -p "$XDG_CONFIG_HOME/Tessaloom"
settings=$XDG_CONFIG_HOME/Tessaloom/Tessaloom.conf
# The window opens on the theme browser ("All Themes"), as it does after a visit there.
printf '[General]\nsidebar.lastSelectedItem=catalog_all_themes\n' > "$settings"

# shellcheck disable=SC2016
xvfb-run --auto-servernum --server-args="-screen 0 1400x900x24" bash -c '
    set -euo pipefail
    # shellcheck source=end-to-end-desktop.sh
    source "$3"
    start_window_manager "$2/openbox.log"
    "$1" > "$2/app.log" 2>&1 &
    app=$!
    window=$(find_main_window "$app" "$2/app.log")
    # Keys go to the focused window: wait until the window manager has given it the focus,
    # then a moment for the first frame (the first start also reads fonts and icons).
    xdotool windowactivate --sync "$window" || true
    for _ in $(seq 100); do
        [ "$(xdotool getwindowfocus 2>/dev/null)" = "$window" ] && break
        xdotool windowfocus "$window" 2>/dev/null || true
        sleep 0.1
    done
    sleep 2
    # Into the theme table first, where the type-ahead lives: Tab from the search field.
    xdotool key --clearmodifiers ctrl+f
    xdotool key --clearmodifiers Tab
    sleep 0.3
    xdotool key --clearmodifiers ctrl+f
    sleep 0.3
    xdotool type --delay 40 ninjago
    sleep 1
    quit_with_ctrl_q "$app"
' _ "$binary" "$sandbox" "$(dirname "${BASH_SOURCE[0]}")/end-to-end-desktop.sh"

search=$(sed -n 's/^themeBrowser.searchText=//p' "$settings")
selected=$(sed -n 's/^sidebar.lastSelectedItem=//p' "$settings")
if [ "$search" != "ninjago" ] || [ "$selected" != "catalog_all_themes" ]; then
    echo "Ctrl+F did not reach the theme browser's search field:" >&2
    echo "  search text \"$search\" (expected \"ninjago\"), sidebar \"$selected\" (expected \"catalog_all_themes\")" >&2
    cat "$sandbox/app.log" >&2
    exit 1
fi
echo "Ctrl+F put \"ninjago\" into the theme browser's search; the browser stayed on show."
