#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# bench.sh [--quick]: builds Tarn as it is released and measures it beside other monitors and beside the least that such a
# program can cost. Installs what is missing. Prints one table, leaves build/bench/report.json, and fails when a goal is
# missed. It takes a quarter of an hour, with --quick less than a minute and less care.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/scripts/lib.sh"

case "$*" in
  "" | --quick) ;;
  *) fail "usage: bench.sh [--quick]" ;;
esac

cd "$repository"
scripts/install_packages.sh build run desktop bench peers
scripts/build.sh bench
python3 bench/compare.py "$@"
