#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# in_package_root.sh install PACKAGE | test ID | purge: check_packages.sh runs it as root of a temporary Debian system.
# install: installs the package with its dependencies. test: starts Tarn as an ordinary user, without a panel, by hand, by
# D-Bus (where ID is its name) and by its desktop entry. purge: removes the package and fails if files are left.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

readonly self="${BASH_SOURCE[0]}" listed=/check/listed
readonly no_panel="tarn: no menu bar shows status items here; Tarn stays in a window of its own until one does."

# Runs apt-get; prints its output only when it fails.
quiet_apt() {
  local output
  output="$(apt-get --yes --quiet --no-install-recommends -o Dpkg::Use-Pty=0 "$@" 2>&1)" || fail "apt-get $*: $output"
}

# eventually WHAT COMMAND...: repeats a command until it succeeds; fails after 20 seconds.
eventually() {
  local what="$1" tries
  shift
  for ((tries = 0; tries < 200; tries++)); do
    if "$@"; then return 0; fi
    sleep 0.1
  done
  fail "Not true within 20 seconds: $what. Tarn's standard error: $(cat "$HOME/stderr" 2>/dev/null)"
}

install_package() {
  quiet_apt update
  # Installed before the test programs, so that only the package's dependencies are present.
  quiet_apt install "$1"
  local libraries
  libraries="$(ldd /usr/bin/tarn)"
  ! grep 'not found' <<<"$libraries" || fail "The package lacks a dependency on these libraries."
  dpkg --listfiles tarn >"$listed"
  # The test programs: a display, a bus and their clients.
  quiet_apt install xvfb dbus-daemon libglib2.0-bin x11-utils
  quiet_apt autoclean
  useradd --create-home tester
}

# The following functions run as the ordinary user.

call_bus() {
  gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
    --method "org.freedesktop.DBus.$1" "$id" 2>/dev/null
}

runs() { [ "$(call_bus NameHasOwner)" = "(true,)" ]; }
is_stopped() { ! runs; }
# Only mapped windows count: Qt also gives this title to a window that it never maps.
shows_window() {
  local window
  for window in $(xwininfo -root -tree | sed -n 's/^ *\(0x[0-9a-f]*\) "Tarn":.*/\1/p'); do
    if xwininfo -id "$window" -stats 2>/dev/null | grep --quiet 'Map State: IsViewable'; then return 0; fi
  done
  return 1
}
shows_no_window() { ! shows_window; }
reports_no_panel() { [ "$(cat "$HOME/stderr")" = "$no_panel" ]; }

process() {
  local answer
  answer="$(call_bus GetConnectionUnixProcessID)"
  answer="${answer#(uint32 }"
  printf '%s' "${answer%,)}"
}

terminate_tarn() {
  kill "$(process)"
  eventually "Tarn ends after SIGTERM" is_stopped
}

activate() {
  gdbus call --session --dest "$id" --object-path "/${id//./\/}" --method org.freedesktop.Application.Activate '{}' \
    >/dev/null || fail "Activate failed."
}

test_without_display() {
  local output status=0
  output="$(env --unset=DISPLAY tarn 2>&1)" || status=$?
  if [ "$status" -ne 1 ] || [ "$(wc -l <<<"$output")" -ne 1 ]; then
    fail "Without a display (exit status $status): $output"
  fi
}

test_start_by_hand() {
  local started_pid
  tarn 2>"$HOME/stderr" &
  started_pid=$!
  eventually "Tarn is on the bus" runs
  eventually "Tarn reports only that there is no panel" reports_no_panel
  eventually "Tarn shows its window" shows_window
  activate
  [ "$(process)" = "$started_pid" ] || fail "Another process answered."
  terminate_tarn
}

# test_start_by COMMAND...: starts Tarn by a command that uses the installed files.
test_start_by() {
  is_stopped || fail "Tarn is already running."
  "$@" || fail "Failed: $*"
  eventually "Tarn is on the bus after: $*" runs
  eventually "Tarn shows its window after: $*" shows_window
  [ "$(readlink "/proc/$(process)/exe")" = /usr/bin/tarn ] || fail "Another program was started by: $*"
  terminate_tarn
  eventually "the window is closed" shows_no_window
}

test_on_bus() {
  id="$1"
  test_without_display
  test_start_by_hand
  # D-Bus activation, and the Exec line of the desktop entry for desktops without it.
  test_start_by activate
  test_start_by gapplication launch "$id"
  test_start_by gio launch "/usr/share/applications/$id.desktop"
}

test_on_display() {
  mkdir --mode=700 "$HOME/runtime"
  Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp -noreset 3>"$HOME/display" &
  eventually "the X server has a display" test -s "$HOME/display"
  DISPLAY=":$(cat "$HOME/display")" XDG_RUNTIME_DIR="$HOME/runtime" dbus-run-session -- "$self" test_on_bus "$1" \
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
  test)
    mkdir --parents /tmp/.X11-unix
    chmod 1777 /tmp/.X11-unix
    runuser --user tester -- env HOME=/home/tester "$self" test_on_display "$2"
    ;;
  test_on_display | test_on_bus) "$1" "$2" ;;
  purge) purge_package ;;
  *) fail "usage: in_package_root.sh install PACKAGE | test ID | purge" ;;
esac
