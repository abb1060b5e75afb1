#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# check_format.sh: fails when clang-format would change a source file.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

cd "$repository"
git -c safe.directory='*' ls-files -z -- '*.cpp' '*.hpp' '*.mm' | xargs -0 --no-run-if-empty clang-format --dry-run -Werror
