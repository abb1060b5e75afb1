# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# What the commands share. To be sourced.

# shellcheck disable=SC2034
repository="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"

# Prints each argument on a line of its own.
say() {
  printf '%s\n' "$@"
}

fail() {
  printf '%s\n' "$*" >&2
  exit 1
}

is_root() {
  [ "$(id -u)" -eq 0 ]
}

# Runs a command as root.
as_root() {
  if is_root; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    fail "Not root, and there is no sudo to become root for: $*"
  fi
}

# The words that run a command with a fixed memory layout, where the system lets us: some kernels place memory
# where the sanitizers keep their own.
fixed_addresses=()
if setarch --addr-no-randomize true 2>/dev/null; then
  # shellcheck disable=SC2034
  fixed_addresses=(setarch --addr-no-randomize)
fi
