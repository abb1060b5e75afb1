#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# on_mac.sh run|test [--all]: run.sh and test.sh on a Mac, with Homebrew; --all has no effect. For bash 3.2, which is
# part of macOS.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."

fail() {
  printf '%s\n' "$*" >&2
  exit 1
}

install_formulas() {
  local formula
  command -v brew >/dev/null || fail "Homebrew is missing: https://brew.sh says how to install it."
  xcode-select --print-path >/dev/null 2>&1 || fail "The command line tools are missing: xcode-select --install"
  for formula in "$@"; do
    brew list --formula "$formula" >/dev/null 2>&1 || brew install "$formula" ||
      fail "Homebrew could not install: $formula"
  done
}

# Homebrew's libraries require the macOS version that they were built on, and so does a program linked with them.
build() {
  cmake --preset "$1" -DCMAKE_PREFIX_PATH="$(brew --prefix qt);$(brew --prefix)" \
    -DCMAKE_OSX_DEPLOYMENT_TARGET="$(sw_vers -productVersion | cut -d . -f 1).0"
  cmake --build --preset "$1"
}

[ "$(uname -m)" = arm64 ] || fail "Tarn is for Macs with Apple silicon."

case "$*" in
  run)
    install_formulas cmake ninja qt
    build release
    # "open" would activate a running instance instead of starting the new one.
    osascript -e 'quit app "Tarn"' >/dev/null 2>&1 || true
    open build/release/src/app/Tarn.app
    echo "Tarn is starting. Look for its circle in the menu bar."
    ;;
  test | "test --all")
    install_formulas cmake ninja qt googletest
    build dev
    ctest --preset dev || fail "Some tests failed; see above."
    echo "All tests passed."
    ;;
  *) fail "usage: on_mac.sh run|test" ;;
esac
