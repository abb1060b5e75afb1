#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# check_tidy.sh: runs clang-tidy over every source file of the asan build.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

cd "$repository"
report="$repository/build/results/clang-tidy.txt"
mkdir -p "$(dirname "$report")"
status=0
run-clang-tidy -quiet -p build/asan -j "$(nproc)" "^$repository/(src|tests)/.*\.cpp$" >"$report" 2>&1 || status=$?
grep -E -A 4 '(error|warning):' "$report" || true
exit "$status"
