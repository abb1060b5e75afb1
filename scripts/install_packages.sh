#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# install_packages.sh GROUP...: installs the missing packages of these groups of packages.txt on Debian and its
# derivatives. On a system with dnf, pacman or zypper it prints the command that installs the missing ones, and fails.
# On any other system it prints the Debian names and succeeds: the build then reports what is missing.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

readonly list="$repository/scripts/packages.txt"

# Prints column COLUMN of the packages of GROUP, or the Debian name if the line has no such column.
packages_of() {
  local group="$1" column="$2" line current="" found="" names
  while IFS= read -r line; do
    read -ra names <<<"${line%%#*}"
    case "${names[*]}" in
      "") ;;
      "["*"]") current="${names[0]:1:-1}" ;;
      *)
        if [ "$current" = "$group" ]; then
          found=yes
          say "${names[$column]:-${names[0]}}"
        fi
        ;;
    esac
  done <"$list"
  [ -n "$found" ] || fail "$list has no group [$group]"
}

is_installed_dpkg() { [ "$(dpkg-query --show --showformat='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }
is_installed_rpm() { rpm --query --whatprovides "$1" >/dev/null 2>&1; }
is_installed_pacman() { pacman --query "$1" >/dev/null 2>&1; }

# missing_packages COLUMN IS_INSTALLED GROUP...: prints each missing package once.
missing_packages() {
  local column="$1" is_installed="$2" group package packages
  shift 2
  for group in "$@"; do
    packages="$(packages_of "$group" "$column")"
    for package in $packages; do
      "$is_installed" "$package" || say "$package"
    done
  done | awk '!seen[$0]++'
}

# "debian" in ID or ID_LIKE of os-release(5).
is_debian_or_derivative() {
  local ID="" ID_LIKE=""
  # shellcheck source=/dev/null
  if [ -r /etc/os-release ]; then source /etc/os-release; fi
  case " $ID $ID_LIKE " in
    *" debian "*) command -v apt-get >/dev/null ;;
    *) false ;;
  esac
}

install_on_debian() {
  local missing package
  mapfile -t missing < <(missing_packages 0 is_installed_dpkg "$@")
  [ "${#missing[@]}" -gt 0 ] || return 0
  say "Installing: ${missing[*]}"
  as_root apt-get update --quiet --quiet || say "The package lists could not all be updated; trying the old ones."
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install --yes --quiet --quiet --no-install-recommends \
    -o Dpkg::Use-Pty=0 -o DPkg::Lock::Timeout=300 "${missing[@]}" || fail "apt-get could not install: ${missing[*]}"
  for package in "${missing[@]}"; do
    is_installed_dpkg "$package" || fail "Still missing after the installation: $package"
  done
}

# name_missing COMMAND COLUMN IS_INSTALLED GROUP...: fails with the command that installs what is missing.
name_missing() {
  local command="$1" missing
  shift
  mapfile -t missing < <(missing_packages "$@")
  [ "${#missing[@]}" -eq 0 ] || fail "Packages are missing. Please run: sudo $command ${missing[*]}"
}

[ "$#" -gt 0 ] || fail "usage: install_packages.sh GROUP..."
for group in "$@"; do packages_of "$group" 0 >/dev/null; done
if is_debian_or_derivative; then
  install_on_debian "$@"
elif command -v dnf >/dev/null; then
  name_missing "dnf install" 1 is_installed_rpm "$@"
elif command -v pacman >/dev/null; then
  name_missing "pacman -S" 2 is_installed_pacman "$@"
elif command -v zypper >/dev/null; then
  name_missing "zypper install" 3 is_installed_rpm "$@"
else
  say "This is no system whose packages are known here. What Tarn needs, by Debian's names:"
  for group in "$@"; do packages_of "$group" 0; done
fi
