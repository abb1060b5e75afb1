#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# run.sh: builds Tarn and starts it in this desktop. Without a display it starts a virtual desktop and writes
# screenshots and the texts of the popover to build/screenshots. Installs missing packages.
set -euo pipefail
[ "$(uname)" != Darwin ] || exec "$(dirname "${BASH_SOURCE[0]}")/scripts/on_mac.sh" run "$@"
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/scripts/lib.sh"

tarn="$repository/build/release/src/app/tarn"
screenshots="$repository/build/screenshots"
has_display=""
[ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] || has_display=yes

groups=(build run)
[ -n "$has_display" ] || groups+=(desktop)
"$repository/scripts/install_packages.sh" "${groups[@]}"
"$repository/scripts/build.sh" release

if [ -n "$has_display" ]; then
  say "Tarn is starting. Look for its circle in the panel."
  exec "$tarn"
fi

say "There is no display. Starting a virtual desktop."
rm -rf "$screenshots"
"$repository/scripts/on_virtual_desktop.sh" --tarn "$tarn" --results "$screenshots" screenshots.py
say "" "The screenshots and the texts of the popover:"
printf '  %s\n' "$screenshots"/*
say "" "Tarn ran: a click on its circle opened the popover, every tab was shown, and a row was opened."
