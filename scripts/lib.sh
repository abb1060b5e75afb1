# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# Functions of the scripts, to be sourced.

# shellcheck disable=SC2034
repository="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"

# Prints each argument on a separate line.
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
    fail "Not root, and sudo is not installed: $*"
  fi
}

# The command prefix that disables address space layout randomization, where the kernel permits that: on
# some kernels random addresses overlap the sanitizers' shadow memory.
fixed_addresses=()
if setarch --addr-no-randomize true 2>/dev/null; then
  # shellcheck disable=SC2034
  fixed_addresses=(setarch --addr-no-randomize)
fi
