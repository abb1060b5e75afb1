#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# check_text.sh: checks the Python and shell code and the spelling of all files with flake8, shellcheck and codespell.
# Their settings are in setup.cfg.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

cd "$repository"
git -c safe.directory='*' ls-files -z -- '*.py' | xargs -0 flake8
git -c safe.directory='*' ls-files -z -- '*.sh' | xargs -0 shellcheck --external-sources
git -c safe.directory='*' ls-files -z -- ':!*.png' ':!*.svg' | xargs -0 codespell
