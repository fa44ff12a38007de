# SPDX-License-Identifier: GPL-3.0-or-later
# shellcheck shell=bash
# Sourced by the end-to-end scripts before they start the program: an empty temporary
# HOME with its XDG folders ($sandbox, removed on exit), the X11 platform rather than
# offscreen or Wayland, and every outside service pointed at a closed port of this
# machine, so the program's daily catalog check and any picture or update request fail at
# once instead of leaving it.
sandbox=$(mktemp -d)
trap 'rm -rf "$sandbox"' EXIT
export HOME=$sandbox/home XDG_CONFIG_HOME=$sandbox/config XDG_DATA_HOME=$sandbox/data XDG_CACHE_HOME=$sandbox/cache
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME"
unset QT_QPA_PLATFORM WAYLAND_DISPLAY
endpoints=()
for service in rebrickable bricklink bricklinkImages brickeconomy brickset brickowl ebay rapidapi lego updates; do
    endpoints+=("$service=http://127.0.0.1:9")
done
TESSALOOM_ENDPOINTS=$(IFS=';'; echo "${endpoints[*]}")
export TESSALOOM_ENDPOINTS
