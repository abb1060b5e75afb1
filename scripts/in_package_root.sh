#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# in_package_root.sh install PACKAGE | try ID | purge: in a fresh Debian that is thrown away afterwards, as its root,
# installs the package with what it depends on; runs it as an ordinary user, without a panel, by hand, by the bus, where
# ID is its name, and by its entry in the menu; removes it and looks for what it left.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

readonly self="${BASH_SOURCE[0]}" listed=/check/listed
readonly no_panel="tarn: no menu bar shows status items here; Tarn stays in a window of its own until one does."

# Runs apt-get, which is heard only when it fails.
quiet_apt() {
  local said
  said="$(apt-get --yes --quiet --no-install-recommends -o Dpkg::Use-Pty=0 "$@" 2>&1)" || fail "apt-get $*: $said"
}

# eventually WHAT COMMAND...: fails when the command does not succeed within 20 seconds.
eventually() {
  local what="$1" tries
  shift
  for ((tries = 0; tries < 200; tries++)); do
    if "$@"; then return 0; fi
    sleep 0.1
  done
  fail "Not so within 20 seconds: $what. Tarn said: $(cat "$HOME/said" 2>/dev/null)"
}

install_package() {
  quiet_apt update
  # Alone at first: what it needs has to come with it.
  quiet_apt install "$1"
  local libraries
  libraries="$(ldd /usr/bin/tarn)"
  ! grep 'not found' <<<"$libraries" || fail "The package does not depend on these libraries."
  dpkg --listfiles tarn >"$listed"
  # A display, a bus, and what asks them.
  quiet_apt install xvfb dbus-daemon libglib2.0-bin x11-utils
  quiet_apt autoclean
  useradd --create-home person
}

# What follows is the ordinary user's.

ask_bus() {
  gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
    --method "org.freedesktop.DBus.$1" "$id" 2>/dev/null
}

runs() { [ "$(ask_bus NameHasOwner)" = "(true,)" ]; }
is_gone() { ! runs; }
# The toolkit gives that title to a window, too, that it never shows.
shows_window() {
  local window
  for window in $(xwininfo -root -tree | sed -n 's/^ *\(0x[0-9a-f]*\) "Tarn":.*/\1/p'); do
    if xwininfo -id "$window" -stats 2>/dev/null | grep --quiet 'Map State: IsViewable'; then return 0; fi
  done
  return 1
}
shows_no_window() { ! shows_window; }
has_said() { [ "$(cat "$HOME/said")" = "$no_panel" ]; }

process() {
  local answer
  answer="$(ask_bus GetConnectionUnixProcessID)"
  answer="${answer#(uint32 }"
  printf '%s' "${answer%,)}"
}

end_tarn() {
  kill "$(process)"
  eventually "Tarn ends when it is told to" is_gone
}

activate() {
  gdbus call --session --dest "$id" --object-path "/${id//./\/}" --method org.freedesktop.Application.Activate '{}' \
    >/dev/null || fail "Activate was refused."
}

try_without_display() {
  local said status=0
  said="$(env --unset=DISPLAY tarn 2>&1)" || status=$?
  if [ "$status" -ne 1 ] || [ "$(wc -l <<<"$said")" -ne 1 ]; then
    fail "Without a display (exit status $status): $said"
  fi
}

try_by_hand() {
  local started
  tarn 2>"$HOME/said" &
  started=$!
  eventually "Tarn is on the bus" runs
  eventually "Tarn says that there is no panel, and nothing else" has_said
  eventually "Tarn shows its window" shows_window
  activate
  [ "$(process)" = "$started" ] || fail "Another Tarn answered."
  end_tarn
}

# try_started_by COMMAND...: a command that reaches Tarn by the files that were installed.
try_started_by() {
  is_gone || fail "Tarn runs already."
  "$@" || fail "Failed: $*"
  eventually "Tarn is on the bus after: $*" runs
  eventually "Tarn shows itself after: $*" shows_window
  [ "$(readlink "/proc/$(process)/exe")" = /usr/bin/tarn ] || fail "Another program was started by: $*"
  end_tarn
  eventually "the window is gone" shows_no_window
}

try_on_bus() {
  id="$1"
  try_without_display
  try_by_hand
  # By the bus, as desktops do that know how, and by the command of its entry, as the others do.
  try_started_by activate
  try_started_by gapplication launch "$id"
  try_started_by gio launch "/usr/share/applications/$id.desktop"
}

try_on_display() {
  mkdir --mode=700 "$HOME/runtime"
  Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp -noreset 3>"$HOME/display" &
  eventually "there is a display" test -s "$HOME/display"
  DISPLAY=":$(cat "$HOME/display")" XDG_RUNTIME_DIR="$HOME/runtime" dbus-run-session -- "$self" try_on_bus "$1" \
    2>"$HOME/log" || fail "$(cat "$HOME/log")"
}

purge_package() {
  quiet_apt purge tarn
  local file left=""
  while read -r file; do
    if [ -f "$file" ] || [ -L "$file" ]; then left+="$file "; fi
  done <"$listed"
  left+="$(find / -xdev \( -path /check -o -path /var/cache/apt/archives \) -prune -o -iname '*tarn*' -print)"
  [ -z "$left" ] || fail "Left behind: $left"
}

case "$1" in
  install) install_package "$2" ;;
  try)
    mkdir --parents /tmp/.X11-unix
    chmod 1777 /tmp/.X11-unix
    runuser --user person -- env HOME=/home/person "$self" try_on_display "$2"
    ;;
  try_on_display | try_on_bus) "$1" "$2" ;;
  purge) purge_package ;;
  *) fail "usage: in_package_root.sh install PACKAGE | try ID | purge" ;;
esac
