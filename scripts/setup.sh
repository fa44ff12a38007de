#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs the system packages Tessaloom needs when any is missing (Debian/Ubuntu, through
# sudo when not root), then configures and builds. Idempotent: a second run with nothing
# changed installs nothing and rebuilds nothing.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=${TESSALOOM_BUILD_DIR:-$root/build}

packages=(
    g++ cmake ninja-build ccache pkg-config
    qt6-base-dev qt6-base-dev-tools libgl-dev qt6-charts-dev
    qt6-tools-dev qt6-tools-dev-tools qt6-l10n-tools qt6-httpserver-dev qt6-svg-dev
    qcoro-qt6-dev qtkeychain-qt6-dev
    libsqlite3-dev sqlite3 zlib1g-dev
    xvfb xauth xdotool imagemagick x11-utils openbox
    dbus dbus-x11 gnome-keyring
    desktop-file-utils appstream
)

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$package")
    fi
done

if ((${#missing[@]})); then
    echo "Installing missing system packages: ${missing[*]}"
    sudo=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || { echo "Installing packages needs root or sudo." >&2; exit 1; }
        sudo=(sudo)
    fi
    "${sudo[@]}" apt-get update -qq
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}" >/dev/null
fi

if [ ! -f "$build_dir/build.ninja" ]; then
    cmake -S "$root" -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTESSALOOM_WARNINGS_AS_ERRORS=ON
fi
cmake --build "$build_dir" --parallel "$(nproc)"
