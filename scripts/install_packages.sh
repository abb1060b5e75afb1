#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# install_packages.sh GROUP...: installs what is missing of these groups of packages-debian.txt.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

list="$repository/scripts/packages-debian.txt"

# Prints the packages of one group.
packages_of() {
  local line current="" found=""
  while IFS= read -r line; do
    line="${line%%#*}"
    line="${line//[[:space:]]/}"
    case "$line" in
      "") ;;
      "["*"]") current="${line:1:-1}" ;;
      *) if [ "$current" = "$1" ]; then found=yes && say "$line"; fi ;;
    esac
  done <"$list"
  [ -n "$found" ] || fail "$list has no group [$1]"
}

is_installed() {
  [ "$(dpkg-query --show --showformat='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

wanted=()
for group in "$@"; do
  packages="$(packages_of "$group")"
  mapfile -t -O "${#wanted[@]}" wanted <<<"$packages"
done

if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
  fail "This is not Debian. Please install what these Debian packages hold, then build with cmake: ${wanted[*]}"
fi

missing=()
for package in "${wanted[@]}"; do
  is_installed "$package" || missing+=("$package")
done
[ "${#missing[@]}" -gt 0 ] || exit 0

# Other distributions have apt, too, but not these names.
grep --quiet '^ID=debian$' /etc/os-release ||
  fail "This is not Debian. Please install what these Debian packages hold: ${missing[*]}"

say "Installing: ${missing[*]}"
as_root apt-get update --quiet --quiet || say "The package lists could not all be updated; trying with those at hand."
as_root env DEBIAN_FRONTEND=noninteractive apt-get install --yes --quiet --quiet --no-install-recommends \
  -o Dpkg::Use-Pty=0 -o DPkg::Lock::Timeout=300 "${missing[@]}" || fail "apt-get could not install: ${missing[*]}"
for package in "${missing[@]}"; do
  is_installed "$package" || fail "Still missing after the installation: $package"
done
