#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# run.sh: builds Tarn and starts it in this desktop. Without a display it shows Tarn on a virtual one and leaves
# pictures and a summary in build/screenshots. Installs what is missing.
set -euo pipefail
[ "$(uname)" != Darwin ] || exec "$(dirname "${BASH_SOURCE[0]}")/scripts/on_mac.sh" run "$@"
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/scripts/lib.sh"

tarn="$repository/build/release/src/app/tarn"
pictures="$repository/build/screenshots"
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

say "There is no display. Showing Tarn on a virtual desktop."
rm -rf "$pictures"
"$repository/scripts/on_virtual_desktop.sh" --tarn "$tarn" --results "$pictures" screenshots.py
say "" "The pictures and what the popover said:"
printf '  %s\n' "$pictures"/*
say "" "Tarn ran: a click on its circle opened the popover, every tab was shown, and a row was opened."
