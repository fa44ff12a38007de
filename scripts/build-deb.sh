#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Builds Tessaloom's Debian package (tessaloom_VERSION-1_ARCH.deb) into the build folder:
# sets up and builds through scripts/setup.sh, installs the packaging tools when missing,
# then packs the install rules with CPack. With --install it then installs the package
# with apt-get, which pulls in the libraries it depends on. Idempotent like setup.sh.
#   scripts/build-deb.sh [--install]
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=${TESSALOOM_BUILD_DIR:-$root/build}

install_package=false
case "${1:-}" in
    "") ;;
    --install) install_package=true ;;
    *) echo "Usage: scripts/build-deb.sh [--install]" >&2; exit 2 ;;
esac

sudo=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "Installing packages needs root or sudo." >&2; exit 1; }
    sudo=(sudo)
fi

"$root/scripts/setup.sh"

# dpkg-shlibdeps (dpkg-dev) reads the dependencies from the binaries, with file's help;
# fakeroot gives the packed files root as their owner.
missing=()
for package in dpkg-dev file fakeroot; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$package")
    fi
done
if ((${#missing[@]})); then
    echo "Installing missing packaging tools: ${missing[*]}"
    "${sudo[@]}" apt-get update -qq
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}" >/dev/null
fi

output=$build_dir/package
rm -f "$output"/tessaloom_*.deb
(cd "$build_dir" && cpack -G DEB -B "$output" --config "$build_dir/CPackConfig.cmake" >/dev/null)
package=$(ls "$output"/tessaloom_*.deb)
echo "Built $package"

if $install_package; then
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y "$package"
    echo "Installed: start Tessaloom from the application menu, or run tessaloom."
fi
