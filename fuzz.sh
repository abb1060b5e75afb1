#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# fuzz.sh [SECONDS [TARGET...]]: fuzzes the parsers of untrusted input, SECONDS of CPU time (default: 300) for each
# target, starting from tests/fuzz/corpus. Prints the coverage of each target. Exits with an error if an input crashes a
# parser: the input is then in build/fuzz/findings; add it to the corpus. Installs missing packages.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/scripts/lib.sh"

seconds="${1:-300}"
[[ "$seconds" =~ ^[0-9]+$ ]] || fail "usage: fuzz.sh [SECONDS [TARGET...]]"
shift || true

cd "$repository"
scripts/install_packages.sh build run fuzz
scripts/build.sh fuzz
programs="$repository/build/fuzz/tests/fuzz"
findings="$repository/build/fuzz/findings"
corpus="$repository/build/fuzz/corpus"
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  for program in "$programs"/*_fuzz; do
    target="$(basename "$program")"
    targets+=("${target%_fuzz}")
  done
fi

# coverage_of LOG: the number of functions of src/ that a target entered, and of their branches that it reached. The
# branches include the failures of the sanitizers' checks, which are never reached.
coverage_of() {
  sed -n 's|^COVERED_FUNC: hits: [0-9]* edges: \([0-9]*\)/\([0-9]*\) .*/src/.*|\1 \2|p' "$1" |
    awk '{reached += $1; all += $2} END {printf "%d functions, %d of %d branches", NR, reached, all}'
}

# fuzz TARGET: fuzzes one target and prints one line. libFuzzer's limit is wall-clock time, so it is started again until
# the target has used its CPU time (in ms).
fuzz() {
  local target="$1" log="$repository/build/fuzz/$1.log" status=0 spent=0 inputs=0 executed TIMEFORMAT="%U %S"
  mkdir -p "$corpus/$target" "$findings"
  local run=("${fixed_addresses[@]}" "$programs/${target}_fuzz" -max_len=4096 -timeout=10 -print_coverage=1
    -print_final_stats=1 -artifact_prefix="$findings/$target-")
  [ ! -f "tests/fuzz/dictionaries/$target" ] || run+=(-dict="tests/fuzz/dictionaries/$target")
  # Fontconfig does not free the fonts that Qt finds.
  [ "$target" != row_layout ] || export ASAN_OPTIONS=detect_leaks=0
  while [ "$((spent / 1000))" -lt "$seconds" ] && [ "$status" -eq 0 ]; do
    { time LC_ALL=C.UTF-8 "${run[@]}" -max_total_time=$((seconds - spent / 1000)) "$corpus/$target" \
      "tests/fuzz/corpus/$target" >"$log" 2>&1; } 2>"$log.time" || status=$?
    spent=$((spent + $(awk 'END {printf "%d", 1000 * ($1 + $2)}' "$log.time")))
    executed="$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")"
    inputs=$((inputs + ${executed:-0}))
  done
  printf '%-20s %3d s of CPU time, %9d inputs, %s%s\n' "$target" "$((spent / 1000))" "$inputs" "$(coverage_of "$log")" \
    "$([ "$status" -eq 0 ] || echo ", CRASHED: see $log")"
  return "$status"
}

crashed=0
running=0
say "$seconds seconds of CPU time for each of ${#targets[@]} targets, $(nproc) at a time"
for target in "${targets[@]}"; do
  if [ "$running" -ge "$(nproc)" ]; then
    wait -n || crashed=$((crashed + 1))
    running=$((running - 1))
  fi
  fuzz "$target" &
  running=$((running + 1))
done
while [ "$running" -gt 0 ]; do
  wait -n || crashed=$((crashed + 1))
  running=$((running - 1))
done

[ "$crashed" -eq 0 ] || fail "$crashed of ${#targets[@]} targets crashed; the inputs are in $findings"
say "No input crashed a parser, in $SECONDS seconds."
