#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Pictures of the main screens as a collector sees them: the real program in a real X
# server (Xvfb) under a window manager (openbox), on the sample catalog that comes with it
# and a small collection that screenshot-collection makes through the program's own CSV
# import. One start of the program per screen, each opened the way a user left it (the
# stored sidebar choice and grid or table), the window filling the screen:
#   collection-grid.png   My Collection > All Sets as a grid, the first copy chosen
#   catalog-table.png     Catalog > All Sets as a table, searched for "castle", Hogwarts
#                         Castle chosen
#   theme-browser.png     Catalog > All Themes
#   catalog-setup.png     the set-up sheet, shown when the catalog is of a format too old
#                         to read
#   screenshots.sh BINARY COLLECTION_TOOL OUTPUT_DIRECTORY
set -euo pipefail
binary=$(realpath "$1")
collection_tool=$(realpath "$2")
output=$(realpath -m "$3")

for tool in xvfb-run xdotool xprop import identify openbox sqlite3; do
    command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
done

# shellcheck source=end-to-end-sandbox.sh
source "$(dirname "${BASH_SOURCE[0]}")/end-to-end-sandbox.sh"
catalog=$(dirname "$binary")/../share/Tessaloom/rebrickable.sqlite
[ -f "$catalog" ] || { echo "The sample catalog is missing: $catalog" >&2; exit 1; }
"$collection_tool" "$catalog"
mkdir -p "$output" "$XDG_CONFIG_HOME/Tessaloom"
# Numbers, prices and dates as an American collector sees them, whatever this machine uses.
export LANG=en_US.UTF-8 LC_ALL='' LANGUAGE=''

width=1440
height=900
# shellcheck disable=SC2016
xvfb-run --auto-servernum --server-args="-screen 0 ${width}x${height}x24" bash -c '
    set -euo pipefail
    binary=$1 output=$2 sandbox=$3 width=$4 height=$5 desktop=$6
    settings=$XDG_CONFIG_HOME/Tessaloom/Tessaloom.conf

    # shellcheck source=end-to-end-desktop.sh
    source "$desktop"
    start_window_manager "$sandbox/openbox.log"

    # shoot NAME SIDEBAR_ITEM GRID KEYS...: starts the program on SIDEBAR_ITEM in grid
    # (true) or table (false) form, lets the window fill the screen, sends KEYS (xdotool
    # words: "key ctrl+f", "type castle"), and saves the screen as NAME.png.
    shoot() {
        local name=$1 item=$2 grid=$3
        shift 3
        printf "[General]\nsidebar.lastSelectedItem=%s\ncollectionIsGridView=%s\n" "$item" "$grid" > "$settings"
        "$binary" > "$sandbox/$name.log" 2>&1 &
        local app=$! window
        window=$(find_main_window "$app" "$sandbox/$name.log") || { echo "while taking $name.png" >&2; return 1; }
        # The whole screen less the frame openbox draws around the window.
        local extents left right top bottom
        for _ in $(seq 50); do
            extents=$(xprop -id "$window" _NET_FRAME_EXTENTS 2>/dev/null | sed -n "s/.* = //p")
            [ -n "$extents" ] && break
            sleep 0.1
        done
        IFS=", " read -r left right top bottom <<< "${extents:-0, 0, 0, 0}"
        xdotool windowmove --sync "$window" "$left" "$top" || true
        xdotool windowsize --sync "$window" $((width - left - right)) $((height - top - bottom)) || true
        xdotool windowactivate --sync "$window" || true
        sleep 2 # the first frame at the new size, fonts and icons read
        local step
        for step in "$@"; do
            # shellcheck disable=SC2086
            timeout 30 xdotool $step || { echo "$name: xdotool $step failed or found nothing in 30 seconds." >&2; kill "$app"; return 1; }
            sleep 0.4
        done
        sleep 1.5 # the chosen set'"'"'s detail, and its picture given up on
        import -window root -strip "$output/$name.png"
        quit_with_ctrl_q "$app" || { echo "after taking $name.png" >&2; return 1; }
    }

    # Sets are chosen with the keyboard: Ctrl+F, then Down from the search field chooses the
    # first result, and each further Down the next row ("Hogwarts Castle" is the fifth).
    shoot collection-grid all_sets true "key --clearmodifiers ctrl+f" "key Down"
    shoot catalog-table catalog_all false "key --clearmodifiers ctrl+f" "type --delay 60 castle" \
        "key Down" "key Down" "key Down" "key Down" "key Down"
    shoot theme-browser catalog_all_themes true
    # A catalog in a format older than this program reads stands in front of the sample one;
    # the program treats it as no catalog and brings up the sheet.
    sqlite3 "$XDG_DATA_HOME/Tessaloom/rebrickable.sqlite" "PRAGMA user_version = 1; CREATE TABLE sets (set_num TEXT);"
    # The sheet comes up where the window first stood: in front, in the middle, with the
    # keyboard (Ctrl+Q then goes to it).
    shoot catalog-setup all_sets true \
        "search --sync --onlyvisible --name ^LEGO.Catalog windowactivate --sync %1 windowmove %1 510 260"
' _ "$binary" "$output" "$sandbox" "$width" "$height" "$(dirname "${BASH_SOURCE[0]}")/end-to-end-desktop.sh"

# Four pictures of the whole screen, each different from the others.
for name in collection-grid catalog-table theme-browser catalog-setup; do
    size=$(identify -format "%wx%h" "$output/$name.png")
    [ "$size" = "${width}x${height}" ] || { echo "$name.png: unexpected size $size" >&2; exit 1; }
done
distinct=$(md5sum "$output"/{collection-grid,catalog-table,theme-browser,catalog-setup}.png | cut -d" " -f1 | sort -u | wc -l)
[ "$distinct" = 4 ] || { echo "Two of the screenshots are the same picture." >&2; exit 1; }
echo "Screenshots saved to $output: collection-grid, catalog-table, theme-browser, catalog-setup"
