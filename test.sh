#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# test.sh [--all]: builds Tarn and runs its tests: format, module dependencies and spelling, unit tests under
# AddressSanitizer, UndefinedBehaviorSanitizer and ThreadSanitizer, end-to-end tests in a virtual desktop, and the macOS
# port, compiled. --all adds the slow stages: clang-tidy, the "unsupported" platform, the release build, all panels,
# faults, the systemd unit, real applications, the Debian package and the benchmarks. Installs missing packages.
# The output of each stage is in build/results.
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
readonly results="$repository/build/results"
rm -rf "$results"
mkdir -p "$results"
passed=0
failed=0
summary=()
declare -A started=()

# A stage is a function. It may write the numbers of passed and failed tests ("40 3") to the file $counts. A stage that
# does not write them counts as one test.
run_stage() {
  local function="$1" start="$SECONDS" status
  counts="$results/$function.counts"
  set +e  # the subshell enables it again; "|| status=$?" would disable it in the subshell, too
  (
    set -e
    "$function"
  )
  status=$?
  set -e
  [ -s "$counts" ] || say "1 0" >"$counts"
  say "$status $((SECONDS - start))" >"$results/$function.status"
}

# stage TITLE FUNCTION: runs a stage.
stage() {
  say "" "=== $1"
  run_stage "$2" 2>&1 | tee "$results/$2.log"
  add_to_summary "$1" "$2"
}

# start TITLE FUNCTION: starts a stage that runs in parallel with the following ones.
start() {
  run_stage "$2" >"$results/$2.log" 2>&1 &
  started[$2]="$!"
}

# finish TITLE FUNCTION: waits for a started stage, and prints its output.
finish() {
  wait "${started[$2]}" || true
  say "" "=== $1"
  cat "$results/$2.log"
  add_to_summary "$1" "$2"
}

add_to_summary() {
  local title="$1" function="$2" status=1 seconds=0 stage_passed=0 stage_failed=0
  read -r status seconds <"$results/$function.status" || true
  read -r stage_passed stage_failed <"$results/$function.counts" || true
  if [ "$status" -ne 0 ] && [ "$stage_failed" -eq 0 ]; then
    stage_failed=1
    stage_passed=$((stage_passed > 1 ? stage_passed : 0))
  fi
  passed=$((passed + stage_passed))
  failed=$((failed + stage_failed))
  summary+=("$(printf '%-50s %4d passed %3d failed %5d s' "$title" "$stage_passed" "$stage_failed" "$seconds")")
}

# unit_tests PRESET [CTEST OPTION...]: runs the unit tests of a build and counts the test cases.
unit_tests() {
  local status=0 tests failures passed_cases=0 failed_cases=0 folder="$results/$1"
  GTEST_OUTPUT="xml:$folder/" "${fixed_addresses[@]}" ctest --preset "$@" --parallel "$(nproc)" || status=$?
  while read -r tests failures; do
    passed_cases=$((passed_cases + tests - failures))
    failed_cases=$((failed_cases + failures))
  done < <(sed -n 's/^<testsuites tests="\([0-9]*\)" failures="\([0-9]*\)".*/\1 \2/p' "$folder"/*.xml)
  say "$passed_cases $failed_cases" >"$counts"
  return "$status"
}

# end_to_end_tests CTEST OPTION...: runs the selected end-to-end tests and counts them.
end_to_end_tests() {
  local status=0 log
  log="$(mktemp "$results/pytest.XXXXXX")"
  ctest --preset end-to-end "$@" --verbose | tee "$log" || status=$?
  # The closing line of each pytest: "= 3 failed, 40 passed, 1 skipped in 12.34s =".
  awk '/=+ .* in [0-9.]+s/ {
    for (i = 2; i <= NF; i++) {
      if ($i ~ /^passed/) passed += $(i - 1)
      if ($i ~ /^(failed|error)/) failed += $(i - 1)
    }
  } END { print passed + 0, failed + 0 }' "$log" >"$counts"
  return "$status"
}

check_texts() {
  scripts/check_format.sh
  scripts/check_modules.py
  scripts/check_text.sh
}
# Builds the program and what its end-to-end tests need.
build_program() { scripts/build.sh asan tarn list_groups; }
# Builds at low priority, because end-to-end tests run at the same time.
build_asan() { nice scripts/build.sh asan; }
unit_tests_asan() { unit_tests asan; }
# Without --all, runs only the tests of code that threads share.
unit_tests_tsan() {
  if [ -n "$all" ]; then
    scripts/build.sh tsan
    unit_tests tsan
  else
    scripts/build.sh tsan threads_tests
    unit_tests tsan --label-regex '^threads$'
  fi
}
# At low priority, because end-to-end tests run beside it.
unit_tests_unsupported() { nice scripts/build.sh unsupported && unit_tests unsupported; }
check_macos() { nice scripts/check_macos.sh; }
end_to_end_desktop() { end_to_end_tests --label-regex '^desktop$' --label-exclude '^release$'; }
build_release() { scripts/build.sh release; }
end_to_end_release() { end_to_end_tests --label-regex '^release$'; }
end_to_end_all() { end_to_end_tests --label-regex '^(hosts|faults|slow|unit|applications)$'; }
check_packages() { scripts/check_packages.sh; }
# Checks only that the benchmarks build and run: ./bench.sh checks their figures.
benchmarks() {
  local benchmark
  scripts/build.sh bench
  for benchmark in build/bench/bench/*_benchmark; do
    "$benchmark" --benchmark_min_time=0.01 >/dev/null 2>&1
  done
  build/bench/bench/sweep_against_floor 100 3
}
# Runs at idle priority, because end-to-end tests that measure time run at the same time.
check_tidy() { chrt --idle 0 scripts/check_tidy.py; }

scripts/install_packages.sh build run desktop test \
  ${all:+hosts faults session applications bench packages lint}
stage "format, module dependencies, spelling" check_texts
# Started early, because it downloads a compiler first.
start "macOS port compiles" check_macos
stage "build the program with AddressSanitizer and UBSan" build_program
# These tests wait most of the time, so the build of the unit tests runs in parallel.
start "end-to-end tests, sanitized" end_to_end_desktop
stage "build the unit tests with AddressSanitizer and UBSan" build_asan
finish "end-to-end tests, sanitized" end_to_end_desktop
stage "unit tests, AddressSanitizer and UBSan" unit_tests_asan
stage "unit tests, ThreadSanitizer" unit_tests_tsan
finish "macOS port compiles" check_macos
if [ -n "$all" ]; then
  stage "release build" build_release
  stage "end-to-end tests of figures and timing, release" end_to_end_release
  start "end-to-end tests: panels, faults, unit, applications" end_to_end_all
  stage "unit tests, unsupported platform" unit_tests_unsupported
  stage "clang-tidy" check_tidy
  finish "end-to-end tests: panels, faults, unit, applications" end_to_end_all
  stage "Debian package" check_packages
  stage "benchmarks build and run" benchmarks
fi

say ""
printf '%s\n' "${summary[@]}"
say "" "$passed passed, $failed failed"
if [ "$failed" -eq 0 ]; then
  say "All tests passed in $SECONDS seconds."
else
  say "Some tests failed; see above. The output of each stage is in build/results."
  exit 1
fi
