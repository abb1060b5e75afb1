#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# build.sh PRESET [TARGET...]: configures and builds a preset of CMakePresets.json in build/PRESET.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

preset="$1"
shift
targets=()
[ "$#" -eq 0 ] || targets=(--target "$@")
cd "$repository"
say "Building Tarn ($preset)"
cmake --preset "$preset" --log-level=WARNING
cmake --build --preset "$preset" --parallel "$(nproc)" "${targets[@]}"
