#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# check_includes.sh: fails when a room of src/ includes one that it must not know.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

cd "$repository/src"
status=0

# room NAME ALLOWED...: its files include only files of these rooms.
room() {
  local name="$1" allowed
  shift
  allowed="$(IFS='|' && printf '%s' "$*")"
  if grep --recursive --line-number --extended-regexp '^#include "' "$name" |
    grep --invert-match --extended-regexp "#include \"($allowed)/"; then
    say "The room $name may include only: $*"
    status=1
  fi
}

room sampling sampling
room extras extras
room format format
room monitor monitor sampling extras
room ui ui monitor sampling extras format
room app app ui monitor sampling extras format
# What a platform supplies is declared in any of the rooms; it includes nothing of another platform.
for platform in platform/*/; do
  room "${platform%/}" "${platform%/}" app ui monitor sampling extras format
done
exit "$status"
