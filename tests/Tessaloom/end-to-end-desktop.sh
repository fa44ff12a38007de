# SPDX-License-Identifier: GPL-3.0-or-later
# shellcheck shell=bash
# Sourced inside the X server (xvfb-run) by the end-to-end scripts that drive the program
# under a window manager: starting openbox, finding the program's main window, and quitting
# the program as a user does. Each prints what it saw and returns 1 when it fails.

# start_window_manager LOG: openbox, waited for until it announces itself. A window mapped
# while openbox is still starting can be caught in its take-over of existing windows and
# stay unmapped, so the program starts only after this.
start_window_manager() {
    openbox > "$1" 2>&1 &
    for _ in $(seq 200); do
        xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q "window id" && return 0
        sleep 0.1
    done
    echo "openbox did not start within 20 seconds." >&2
    cat "$1" >&2
    return 1
}

# find_main_window PID LOG: prints the id of the program's main window once it is mapped;
# otherwise lists the windows on the screen and the program's log, and stops the program.
find_main_window() {
    local window
    if window=$(timeout 60 xdotool search --sync --onlyvisible --name "^Tessaloom$" | head -n 1); then
        echo "$window"
        return 0
    fi
    echo "The main window did not appear within 60 seconds. Windows on the screen:" >&2
    xwininfo -root -tree 2>&1 | grep -v "has no name" | head -40 >&2 || true
    cat "$2" >&2
    kill "$1" 2>/dev/null || true
    return 1
}

# quit_with_ctrl_q PID: Ctrl+Q to the window with the focus; the program must end within
# ten seconds.
quit_with_ctrl_q() {
    xdotool key --clearmodifiers ctrl+q
    for _ in $(seq 50); do
        kill -0 "$1" 2>/dev/null || return 0
        sleep 0.2
    done
    echo "The program did not quit on Ctrl+Q." >&2
    kill "$1"
    return 1
}
