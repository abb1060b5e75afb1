#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# on_virtual_desktop.sh [--session] [--with FILE]... TARN OUTPUT SCRIPT [WORD...]: runs tests/end_to_end/SCRIPT with
# the program TARN as an ordinary user, when called by root beside a process of root, and one that can make tasks
# wait for memory. What the script leaves in its folder "pictures" and its file "counts" goes to the folder OUTPUT.
# With --session, where root calls, the script can start a session manager and install applications in /opt, which
# is told by TARN_SESSION. With --with, a program lies beside TARN, or a script beside those in tests/end_to_end.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

readonly user=tarn-desktop
readonly foreign_megabytes=200
# What thrashes reads more than it may keep in memory.
readonly thrash_limit_megabytes=40
readonly thrash_megabytes=160
readonly thrash_processes=8
wants_session=""
others=()
while true; do
  case "$1" in
    --session) wants_session=yes ;;
    --with) others+=("$2") && shift ;;
    *) break ;;
  esac
  shift
done
tarn="$1"
output="$2"
script="$3"
shift 3

end_to_end="$repository/tests/end_to_end"
foreign=""
thrasher=""
harness=""
control_group="tarn-session-$$"
tight_group="tarn-tight-$$"
# Everything that the user needs is copied here: the clone may lie where that user can not go.
stage="$(mktemp --directory "${TMPDIR:-/tmp}/tarn-stage.XXXXXX")"

# shellcheck disable=SC2317
clean_up() {
  local pid
  for pid in $harness $foreign $thrasher; do
    kill "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
  done
  rm -rf "$stage"
  # Empty directories, each of which takes its own removal.
  find /sys/fs/cgroup -maxdepth 2 \( -name "$control_group*" -o -name "$tight_group" \) \
    -exec find {} -depth -type d -delete \; 2>/dev/null || true
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

fill_stage() {
  mkdir "$stage/bin"
  cp "$tarn" "$stage/bin/tarn"
  cp -r "$end_to_end" "$stage/end_to_end"
  local other
  for other in "${others[@]}"; do
    case "$other" in
      *.py) cp "$other" "$stage/end_to_end/" ;;
      *) cp "$other" "$stage/bin/" ;;
    esac
  done
  cp -r "$repository/tests/fixtures/linux/machines" "$stage/machines"
  if [ -f "$repository/tests/support/lsan.supp" ]; then cp "$repository/tests/support/lsan.supp" "$stage/"; fi
  local load
  for load in hold_memory burn_core application_tree thrash; do
    g++ -std=c++20 -O1 -Wall -Wextra -Werror -o "$stage/bin/$load" "$end_to_end/loads/$load.cpp"
  done
  g++ -std=c++20 -O1 -Wall -Wextra -Werror -fPIC -shared -o "$stage/bin/shifted_clocks.so" \
    "$end_to_end/loads/shifted_clocks.cpp"
  # Where X servers put their sockets; they may not make it themselves without being root.
  [ -d /tmp/.X11-unix ] || mkdir --mode=1777 /tmp/.X11-unix
}

# Gives the stage to an ordinary user and sets `become` to the words that run a command as that user.
become_ordinary_user() {
  become=()
  is_root || return 0
  id "$user" >/dev/null 2>&1 || useradd --system --no-create-home --shell /usr/sbin/nologin "$user"
  chown -R "$user:" "$stage"
  become=(setpriv "--reuid=$user" "--regid=$(id -g "$user")" --init-groups)
}

# Has the command of the ordinary user run where that user can have a session manager, if we can make that.
prepare_session() {
  [ -n "$wants_session" ] && is_root || return 0
  local rooms=(unshare --mount --propagation private "$repository/scripts/in_session_rooms.sh" "$user")
  # What stands in the way is said by the trial.
  "${rooms[@]}" "$control_group-trial" true || return 0
  become=("${rooms[@]}" "$control_group" "${become[@]}")
  variables+=("TARN_SESSION=yes")
}

# Starts a process of root that holds memory, so that there is one to be seen.
start_foreign_process() {
  is_root || return 0
  local program="foreign_memory_$$"
  mkdir --mode=700 "$stage/root"
  chown root: "$stage/root"
  cp "$stage/bin/hold_memory" "$stage/root/$program"
  "$stage/root/$program" "$foreign_megabytes" >/dev/null &
  foreign=$!
  variables+=("TARN_FOREIGN_PID=$foreign")
}

# Makes a control group with little memory, in either layout of the hierarchy, and prints its directory; what is in
# the way otherwise.
make_tight_group() {
  local limit=$((thrash_limit_megabytes << 20)) group
  if [ -e /sys/fs/cgroup/memory/memory.limit_in_bytes ]; then
    group="/sys/fs/cgroup/memory/$tight_group"
    mkdir "$group" && echo "$limit" >"$group/memory.limit_in_bytes"
  elif grep --quiet --word-regexp memory /sys/fs/cgroup/cgroup.subtree_control 2>/dev/null; then
    group="/sys/fs/cgroup/$tight_group"
    mkdir "$group" && echo "$limit" >"$group/memory.max"
  else
    echo "no control group here limits memory"
    return 1
  fi 2>&1 && echo "$group"
}

# Starts what makes tasks wait for memory when it is asked to, as the ordinary user and in little memory of its own.
start_thrasher() {
  local group="only root can limit a program's memory"
  if ! is_root || ! group="$(make_tight_group)"; then
    variables+=("TARN_NO_THRASHER=$group")
    return 0
  fi
  mkfifo --mode=600 "$stage/thrash"
  chown "$user:" "$stage/thrash"
  (
    echo "$BASHPID" >"$group/cgroup.procs"
    exec "${become[@]}" "$stage/bin/thrash" "$stage/thrash" /var/tmp "$thrash_megabytes" "$thrash_processes"
  ) &
  thrasher=$!
  variables+=("TARN_THRASHER=$stage/thrash")
}

variables=("PATH=/usr/local/bin:/usr/bin:/bin" "HOME=$stage" "LC_ALL=C.UTF-8" "PYTHONDONTWRITEBYTECODE=1"
  "TARN_STAGE=$stage" "LSAN_OPTIONS=suppressions=$stage/lsan.supp:print_suppressions=0")
fill_stage
become_ordinary_user
start_thrasher
prepare_session
start_foreign_process

status=0
cd "$stage"
"${fixed_addresses[@]}" "${become[@]}" env --ignore-environment "${variables[@]}" \
  /usr/bin/python3 "$stage/end_to_end/$script" "$@" &
harness=$!
wait "$harness" || status=$?
harness=""

mkdir -p "$output"
if [ -d "$stage/pictures" ]; then cp -r "$stage/pictures/." "$output/"; fi
if [ -f "$stage/counts" ]; then cp "$stage/counts" "$output/"; fi
exit "$status"
