#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# test.sh [--all]: builds Tarn and runs its tests, all of them under the sanitizers. --all adds what takes minutes of
# its own: clang-tidy over all sources, the tests on a platform that tells nothing, the program as it is released, in
# panels of every kind, among floods and failures, and as a unit of the session manager, real applications, which it
# installs, the Debian package in a fresh Debian, and the benchmarks. Installs what is missing.
set -euo pipefail
[ "$(uname)" != Darwin ] || exec "$(dirname "${BASH_SOURCE[0]}")/scripts/on_mac.sh" test "$@"
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/scripts/lib.sh"

all=""
case "$*" in
  "") ;;
  --all) all=yes ;;
  *) fail "usage: test.sh [--all]" ;;
esac

cd "$repository"
passed=0
failed=0
summary=()

# stage NAME FUNCTION: runs one stage, which may add to `stage_passed` and `stage_failed` what it counted; a stage
# that counts nothing is one test.
stage() {
  local name="$1" function="$2" start="$SECONDS" status=0
  stage_passed=0
  stage_failed=0
  say "" "=== $name"
  "$function" || status=$?
  if [ "$status" -ne 0 ] && [ "$stage_failed" -eq 0 ]; then stage_failed=1; fi
  if [ "$status" -eq 0 ] && [ "$stage_passed" -eq 0 ]; then stage_passed=1; fi
  passed=$((passed + stage_passed))
  failed=$((failed + stage_failed))
  summary+=("$(printf '%-44s %4d passed %3d failed %5d s' "$name" "$stage_passed" "$stage_failed" \
    "$((SECONDS - start))")")
}

# Builds a preset with tests and runs them all, counting the cases of each test program.
build_and_test() {
  local preset="$1" status=0 tests failures
  local results="$repository/build/results/$preset"
  scripts/build.sh "$preset" || return
  rm -rf "$results"
  GTEST_OUTPUT="xml:$results/" "${fixed_addresses[@]}" ctest --preset "$preset" --parallel "$(nproc)" || status=$?
  while read -r tests failures; do
    stage_passed=$((stage_passed + tests - failures))
    stage_failed=$((stage_failed + failures))
  done < <(sed -n 's/^<testsuites tests="\([0-9]*\)" failures="\([0-9]*\)".*/\1 \2/p' "$results"/*.xml)
  return "$status"
}

# end_to_end MARKERS: the end-to-end tests with these markers, on the sanitized and the released program.
end_to_end() {
  local status=0 results="build/end_to_end/junit.xml" tests errors failures skipped
  scripts/build.sh asan || return
  [ "$1" = "desktop and not release_build" ] || scripts/build.sh release || return
  rm -f "$results"
  /usr/bin/python3 -m pytest tests/end_to_end -n auto -m "$1" --junit-xml=results/junit.xml || status=$?
  read -r errors failures skipped tests < <(sed -n \
    's/.*<testsuite [^>]*errors="\([0-9]*\)" failures="\([0-9]*\)" skipped="\([0-9]*\)" tests="\([0-9]*\)".*/\1 \2 \3 \4/p' \
    "$results") || true
  stage_passed=$((stage_passed + ${tests:-0} - ${errors:-0} - ${failures:-0} - ${skipped:-0}))
  stage_failed=$((stage_failed + ${errors:-0} + ${failures:-0}))
  return "$status"
}

packages() { scripts/install_packages.sh build run desktop test ${all:+lint}; }
tests_with_address_sanitizer() { build_and_test asan; }
tests_with_thread_sanitizer() { build_and_test tsan; }
tests_on_an_unsupported_system() { build_and_test unsupported; }
end_to_end_release() { end_to_end "desktop and release_build"; }
end_to_end_hosts() {
  scripts/install_packages.sh hosts || return
  end_to_end hosts
}
end_to_end_faults() { end_to_end faults; }
end_to_end_slow() {
  scripts/install_packages.sh faults || return
  end_to_end slow
}
# Tests that wait most of the time leave the processors to clang-tidy, which takes none that they want.
tidy_beside_slow_tests() {
  local status=0 tidy
  chrt --idle 0 scripts/check_tidy.sh &
  tidy=$!
  end_to_end_slow || status=$?
  if wait "$tidy"; then
    stage_passed=$((stage_passed + 1))
  else
    stage_failed=$((stage_failed + 1))
    status=1
  fi
  return "$status"
}
end_to_end_unit() {
  scripts/install_packages.sh session || return
  end_to_end unit
}
live_applications() {
  scripts/install_packages.sh applications session || return
  end_to_end applications
}
# Their figures are ./bench.sh's business; that they can be had is ours.
benchmarks() {
  local piece
  scripts/install_packages.sh bench || return
  scripts/build.sh bench || return
  for piece in build/bench/bench/*_benchmark; do
    "$piece" --benchmark_min_time=0.01 >/dev/null 2>&1 || return
  done
  build/bench/bench/sweep_against_floor 100 3
}
end_to_end_sanitized() { end_to_end "desktop and not release_build"; }

packages
stage "layout of the code" scripts/check_format.sh
stage "Python, shell and spelling" scripts/check_text.sh
stage "rooms include only what they may" scripts/check_includes.sh
stage "tests, address and undefined sanitizers" tests_with_address_sanitizer
stage "tests, thread sanitizer" tests_with_thread_sanitizer
stage "end to end on a virtual desktop, sanitized" end_to_end_sanitized
stage "the macOS port, compiled for a Mac" scripts/check_macos.sh
if [ -n "$all" ]; then
  stage "tests, on a system that tells nothing" tests_on_an_unsupported_system
  stage "end to end, figures and rhythm, release" end_to_end_release
  stage "end to end, panels of every kind, release" end_to_end_hosts
  stage "end to end, floods and failures, sanitized" end_to_end_faults
  stage "as the unit of a session manager, release" end_to_end_unit
  stage "real applications and their processes" live_applications
  stage "what is installed, and the Debian package" scripts/check_packages.sh
  stage "benchmarks are built and run" benchmarks
  stage "clang-tidy, and what takes patience" tidy_beside_slow_tests
fi

say ""
printf '%s\n' "${summary[@]}"
say ""
say "$passed passed, $failed failed"
if [ "$failed" -eq 0 ]; then
  say "All tests passed in $SECONDS seconds."
else
  say "Some tests failed; see above."
  exit 1
fi
