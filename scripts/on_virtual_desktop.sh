#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# on_virtual_desktop.sh [OPTION...] COMMAND...: runs "python3 COMMAND..." in a copy of tests/end_to_end as an ordinary
# user, with Tarn and helper programs in a temporary folder ("stage"). If root runs this script, COMMAND runs as the user
# tarn-desktop, who may not be able to read the clone: hence the copy.
#   --tarn PATH           the program under test
#   --release-tarn PATH   the program for tests that need an optimized one
#   --list-groups PATH    the program that prints the group of every process
#   --with FILE           copies one more program, or a Python script, to the stage; may be repeated
#   --results FOLDER      receives the files that COMMAND writes to $TARN_STAGE/results
#   --directory FOLDER    the working directory, relative to the repository
#   --isolated            runs COMMAND in separate namespaces, see in_namespaces.sh; starts a process that can cause
#                         memory pressure
#   --workers             like --isolated, but COMMAND (pytest) itself is not isolated: only the workers are that it starts
#                         with $TARN_WORKER_PYTHON
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

readonly user=tarn-desktop
# The thrash program reads more data than its cgroup may keep in memory, so it stalls.
readonly thrash_limit_megabytes=40
readonly thrash_megabytes=160
readonly thrash_processes=8
tarn=""
release_tarn=""
list_groups=""
results=""
directory="tests/end_to_end"
isolation=""
others=()
while true; do
  case "$1" in
    --tarn) tarn="$2" ;;
    --release-tarn) release_tarn="$2" ;;
    --list-groups) list_groups="$2" ;;
    --with) others+=("$2") ;;
    --results) results="$2" ;;
    --directory) directory="$2" ;;
    --isolated | --workers)
      isolation="$1"
      shift
      continue
      ;;
    *) break ;;
  esac
  shift 2
done

end_to_end="$repository/tests/end_to_end"
thrasher=""
harness=""
session_cgroup="tarn-session-$$"
thrash_cgroup="tarn-thrash-$$"
stage="$(mktemp --directory "${TMPDIR:-/tmp}/tarn-stage.XXXXXX")"

# shellcheck disable=SC2317
clean_up() {
  local pid
  for pid in $harness $thrasher; do
    kill "$pid" 2>/dev/null || true
    # unshare blocks SIGTERM; SIGKILL also ends everything in the PID namespace.
    timeout 5 tail --pid="$pid" --follow /dev/null || kill -KILL "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
  done
  rm -rf "$stage"
  # rmdir removes cgroups one by one, children first.
  find /sys/fs/cgroup -maxdepth 2 \( -name "$session_cgroup*" -o -name "$thrash_cgroup" \) \
    -exec find {} -depth -type d -delete \; 2>/dev/null || true
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

# compile NAME SOURCE OPTION...: compiles a helper program into build/end_to_end/bin unless it is up to date.
compile() {
  local program="$repository/build/end_to_end/bin/$1" source="$2"
  if ! { [ "$program" -nt "$source" ] && [ "$program" -nt "$repository/tests/support/machine_description.hpp" ]; }; then
    mkdir -p "$(dirname "$program")"
    g++ -std=c++20 -O1 -Wall -Wextra -Werror -I "$repository/tests" "${@:3}" -o "$program.$$" "$source"
    mv "$program.$$" "$program"
  fi
  cp "$program" "$stage/bin/"
}

fill_stage() {
  local name other
  mkdir -p "$stage/bin/release" "$stage/tests/fixtures/linux" "$stage/work" "$stage/results" "$stage/root"
  chmod 700 "$stage/root"
  chmod 755 "$stage"
  cp "$tarn" "$stage/bin/tarn"
  [ -z "$release_tarn" ] || cp "$release_tarn" "$stage/bin/release/tarn"
  [ -z "$list_groups" ] || cp "$list_groups" "$stage/bin/list_groups"
  cp "$repository/setup.cfg" "$stage/"
  cp "$repository/packaging/linux/tarn.service.in" "$repository/tests/support/lsan.supp" "$stage/bin/"
  cp -r "$end_to_end" "$stage/tests/"
  cp -r "$repository/tests/fixtures/linux/machines" "$stage/tests/fixtures/linux/"
  for other in "${others[@]}"; do
    case "$other" in
      *.py) cp "$other" "$stage/tests/end_to_end/" ;;
      *) cp "$other" "$stage/bin/" ;;
    esac
  done
  for name in hold_memory burn_core application_tree thrash lay_out_machine; do
    compile "$name" "$end_to_end/programs/$name.cpp"
  done
  compile shifted_clocks.so "$end_to_end/programs/shifted_clocks.cpp" -fPIC -shared
  # X servers create their sockets in this folder.
  [ -d /tmp/.X11-unix ] || mkdir --mode=1777 /tmp/.X11-unix
}

# Gives the writable folders to an ordinary user and sets `become` to the command prefix for that user.
become_ordinary_user() {
  become=()
  is_root || return 0
  id "$user" >/dev/null 2>&1 || useradd --system --no-create-home --shell /usr/sbin/nologin "$user"
  chown -R "$user:" "$stage/work" "$stage/results"
  become=(setpriv "--reuid=$user" "--regid=$(id -g "$user")" --init-groups)
}

# Makes a cgroup with little memory (cgroup v1 or v2) and prints its directory, or else the reason why it failed.
make_thrash_cgroup() {
  local limit=$((thrash_limit_megabytes << 20)) cgroup
  if [ -e /sys/fs/cgroup/memory/memory.limit_in_bytes ]; then
    cgroup="/sys/fs/cgroup/memory/$thrash_cgroup"
    mkdir "$cgroup" && echo "$limit" >"$cgroup/memory.limit_in_bytes"
  elif grep --quiet --word-regexp memory /sys/fs/cgroup/cgroup.subtree_control 2>/dev/null; then
    cgroup="/sys/fs/cgroup/$thrash_cgroup"
    mkdir "$cgroup" && echo "$limit" >"$cgroup/memory.max"
  else
    echo "this system has no memory cgroups"
    return 1
  fi 2>&1 && echo "$cgroup"
}

# Starts the program that causes memory pressure on request, in a separate cgroup.
start_thrasher() {
  local cgroup="only root can limit a program's memory"
  if ! is_root || ! cgroup="$(make_thrash_cgroup)"; then
    variables+=("TARN_NO_THRASHER=$cgroup")
    return 0
  fi
  mkfifo --mode=600 "$stage/work/thrash"
  chown "$user:" "$stage/work/thrash"
  (
    echo "$BASHPID" >"$cgroup/cgroup.procs"
    exec "${become[@]}" "$stage/bin/thrash" "$stage/work/thrash" /var/tmp "$thrash_megabytes" "$thrash_processes"
  ) &
  thrasher=$!
  variables+=("TARN_THRASHER=$stage/work/thrash")
}

# Writes the program that runs Python in separate namespaces, unless the kernel refuses them.
write_isolated_python() {
  local isolate=(scripts/in_namespaces.sh "$user" "$session_cgroup" "$stage/root/foreign_memory_$$")
  cp "$stage/bin/hold_memory" "$stage/root/foreign_memory_$$"
  isolate[0]="$stage/root/in_namespaces.sh"
  cp "$repository/scripts/in_namespaces.sh" "${isolate[0]}"
  if ! "${isolate[@]}" true; then
    say "NO ISOLATION: the kernel refuses PID namespaces. The tests run one by one and see all processes."
    isolation=""
    return 0
  fi
  worker_python="$stage/root/python"
  {
    say '#!/bin/sh'
    printf '%q ' exec "${fixed_addresses[@]}" env --ignore-environment "${variables[@]}" "${isolate[@]}" \
      /usr/bin/python3
    say '"$@"'
  } >"$worker_python"
  chmod +x "$worker_python"
}

variables=("PATH=/usr/local/bin:/usr/bin:/bin" "HOME=$stage/work" "LC_ALL=C.UTF-8" "PYTHONDONTWRITEBYTECODE=1"
  "TARN_STAGE=$stage" "LSAN_OPTIONS=suppressions=$stage/bin/lsan.supp:print_suppressions=0")
[ -z "${TERM:-}" ] || variables+=("TERM=$TERM")
fill_stage
if [ -n "$results" ] && [ -d "$results/cache" ]; then cp -r "$results/cache" "$stage/results/"; fi
become_ordinary_user
worker_python=""
if [ -n "$isolation" ]; then
  start_thrasher
  write_isolated_python
fi
python=("${fixed_addresses[@]}" "${become[@]}" env --ignore-environment "${variables[@]}" /usr/bin/python3)
case "$isolation" in
  --isolated) python=("$worker_python") ;;
  # The workers run as the ordinary user; this process only distributes the tests.
  --workers) python=(env --ignore-environment "${variables[@]}" "TARN_WORKER_PYTHON=$worker_python" /usr/bin/python3) ;;
esac

status=0
cd "$stage/$directory"
"${python[@]}" "$@" <&0 &
harness=$!
wait "$harness" || status=$?
harness=""

if [ -n "$results" ]; then
  mkdir -p "$results"
  cp -r "$stage/results/." "$results/"
fi
exit "$status"
