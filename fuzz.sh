#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# fuzz.sh [SECONDS [NAME...]]: makes up inputs for the parsers of all that comes from outside, each for so many seconds of
# processor time (300 if nothing is said), beginning with tests/fuzz/corpus. Prints how much of each parser was reached, and
# ends badly when one was brought down: the input is then in build/fuzz/findings, to be kept as a seed. Installs what is
# missing.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/scripts/lib.sh"

seconds="${1:-300}"
[[ "$seconds" =~ ^[0-9]+$ ]] || fail "usage: fuzz.sh [SECONDS [NAME...]]"
shift || true

cd "$repository"
scripts/install_packages.sh build run fuzz
scripts/build.sh fuzz
programs="$repository/build/fuzz/tests/fuzz"
findings="$repository/build/fuzz/findings"
corpus="$repository/build/fuzz/corpus"
names=("$@")
if [ ${#names[@]} -eq 0 ]; then
  for program in "$programs"/*_fuzz; do
    name="$(basename "$program")"
    names+=("${name%_fuzz}")
  done
fi

# Says how much of our functions that a fuzzer entered was reached. The sanitizers' own checks, which must never fail, count
# among the branches.
coverage_of() {
  sed -n 's|^COVERED_FUNC: hits: [0-9]* edges: \([0-9]*\)/\([0-9]*\) .*/src/.*|\1 \2|p' "$1" |
    awk '{reached += $1; all += $2} END {printf "%d functions, %d of %d branches", NR, reached, all}'
}

# Runs one fuzzer, and prints one line. The fuzzer counts seconds of the clock: it is called again until its own are spent (in ms).
fuzz() {
  local name="$1" log="$repository/build/fuzz/$1.log" status=0 spent=0 inputs=0 executed TIMEFORMAT="%U %S"
  mkdir -p "$corpus/$name" "$findings"
  local run=("${fixed_addresses[@]}" "$programs/${name}_fuzz" -max_len=4096 -timeout=10 -print_coverage=1
    -print_final_stats=1 -artifact_prefix="$findings/$name-")
  [ ! -f "tests/fuzz/dictionaries/$name" ] || run+=(-dict="tests/fuzz/dictionaries/$name")
  # The toolkit's fonts are kept by a library of its own until the process ends.
  [ "$name" != row_layout ] || export ASAN_OPTIONS=detect_leaks=0
  while [ "$((spent / 1000))" -lt "$seconds" ] && [ "$status" -eq 0 ]; do
    { time LC_ALL=C.UTF-8 "${run[@]}" -max_total_time=$((seconds - spent / 1000)) "$corpus/$name" \
      "tests/fuzz/corpus/$name" >"$log" 2>&1; } 2>"$log.time" || status=$?
    spent=$((spent + $(awk 'END {printf "%d", 1000 * ($1 + $2)}' "$log.time")))
    executed="$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")"
    inputs=$((inputs + ${executed:-0}))
  done
  printf '%-20s %3d s of processor time, %9d inputs, %s%s\n' "$name" "$((spent / 1000))" "$inputs" "$(coverage_of "$log")" \
    "$([ "$status" -eq 0 ] || echo ", BROUGHT DOWN: see $log")"
  return "$status"
}

brought_down=0
running=0
say "$seconds seconds of processor time for each of ${#names[@]} parsers, $(nproc) at a time"
for name in "${names[@]}"; do
  if [ "$running" -ge "$(nproc)" ]; then
    wait -n || brought_down=$((brought_down + 1))
    running=$((running - 1))
  fi
  fuzz "$name" &
  running=$((running + 1))
done
while [ "$running" -gt 0 ]; do
  wait -n || brought_down=$((brought_down + 1))
  running=$((running - 1))
done

[ "$brought_down" -eq 0 ] || fail "$brought_down of ${#names[@]} parsers were brought down; the inputs are in $findings"
say "No input brought a parser down, in $SECONDS seconds."
