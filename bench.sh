#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# bench.sh [--quick]: builds the release configuration and compares Tarn with other monitors and reference programs.
# Prints one table, writes build/bench/report.json, and exits with an error if a goal (bench/goals.py) is missed. Takes
# 15 minutes; with --quick less than a minute, with fewer rounds. Installs missing packages.
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
