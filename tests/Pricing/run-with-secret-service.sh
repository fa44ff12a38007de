#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs one Qt Test executable of the credential store for CTest, away from the user's own
# desktop session, in one of two settings:
#   present  a private D-Bus session with a fresh, unlocked gnome-keyring as the secret
#            service; ends with status 77 (skipped) when dbus-run-session or
#            gnome-keyring-daemon is not installed
#   absent   no session bus at all: its address points at a socket that does not exist
# Either way HOME, the XDG folders and TMPDIR lie in a fresh temporary folder that is
# removed afterwards; the test gets its path in TESSALOOM_TEST_SECRET_SERVICE_HOME, to
# check that no file there holds a credential, and the setting in
# TESSALOOM_TEST_SECRET_SERVICE.
#   run-with-secret-service.sh present|absent EXECUTABLE [ARGUMENTS...]
set -uo pipefail

mode=$1
shift
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
run_qt_test=$here/../TestSupport/run-qt-test.sh

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
mkdir -p "$home/.local/share" "$home/.config" "$home/.cache" "$home/tmp" "$home/runtime"
chmod 700 "$home/runtime"
export HOME=$home XDG_DATA_HOME=$home/.local/share XDG_CONFIG_HOME=$home/.config \
    XDG_CACHE_HOME=$home/.cache XDG_RUNTIME_DIR=$home/runtime TMPDIR=$home/tmp
# QtKeychain picks its back end from the desktop in use; without one it takes the secret
# service (libsecret), which is what both settings exercise.
unset XDG_CURRENT_DESKTOP DESKTOP_SESSION KDE_FULL_SESSION KDE_SESSION_VERSION \
    GNOME_KEYRING_CONTROL DISPLAY WAYLAND_DISPLAY
export TESSALOOM_TEST_SECRET_SERVICE=$mode TESSALOOM_TEST_SECRET_SERVICE_HOME=$home

case $mode in
present)
    for tool in dbus-run-session gnome-keyring-daemon; do
        if ! command -v "$tool" >/dev/null; then
            echo "Skipped: $tool is not installed (packages dbus and gnome-keyring)."
            exit 77
        fi
    done
    # --unlock with a password on stdin creates the login keyring and unlocks it, so
    # writes and reads need no prompt.
    # The daemon takes the secret service's bus name a moment after it returns; the test
    # starts only once the name has an owner (at most 10 s), or the first calls would fail.
    dbus-run-session --config-file="$here/secret-service-bus.conf" -- sh -c '
        echo -n test | gnome-keyring-daemon --unlock --components=secrets >/dev/null || exit 1
        tries=0
        while [ $tries -lt 100 ] && ! dbus-send --session --print-reply --dest=org.freedesktop.DBus \
                /org/freedesktop/DBus org.freedesktop.DBus.NameHasOwner string:org.freedesktop.secrets \
                2>/dev/null | grep -q "boolean true"; do
            sleep 0.1
            tries=$((tries + 1))
        done
        exec "$@"' sh "$run_qt_test" "$@"
    ;;
absent)
    DBUS_SESSION_BUS_ADDRESS=unix:path=$home/no-session-bus "$run_qt_test" "$@"
    ;;
*)
    echo "usage: $0 present|absent EXECUTABLE [ARGUMENTS...]" >&2
    exit 2
    ;;
esac
