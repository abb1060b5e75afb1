#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# in_namespaces.sh USER CGROUP MEMORY_HOLDER COMMAND...: runs COMMAND in separate PID and mount namespaces, so that it
# sees only its own processes, and all of them end with it.
# MEMORY_HOLDER is a program that allocates as many megabytes as its argument says. If root starts this script, COMMAND
# runs as USER, and MEMORY_HOLDER runs beside it as root (its pid is TARN_FOREIGN_PID). If an ordinary user starts it,
# USER, CGROUP and MEMORY_HOLDER are ignored.
# If the kernel permits, the script also prepares /run/systemd/system, a runtime directory of USER, a cgroup that USER
# owns and a writable /opt, and sets TARN_SESSION: a systemd user instance and installed applications need them. The
# name of the cgroup is CGROUP, a hyphen and a pid; the caller removes it.
set -euo pipefail

if [ "$(id -u)" -ne 0 ]; then
  exec unshare --user --map-current-user --pid --fork --kill-child --mount --mount-proc "${@:4}"
fi
if [ "$1" != --inside ]; then
  exec unshare --pid --fork --kill-child --mount --mount-proc --propagation private "$0" --inside "$1" "$2-$$" "${@:3}"
fi
user="$2"
cgroup="$3"
memory_holder="$4"
shift 4

readonly foreign_megabytes=200

mount_empty() {
  mkdir -p "$1" && mount -t tmpfs -o mode=755 none "$1"
}

# cgroup v2, or v1 with the hierarchies that systemd uses.
enter_own_cgroup() {
  local hierarchy
  for hierarchy in /sys/fs/cgroup /sys/fs/cgroup/unified /sys/fs/cgroup/systemd; do
    [ -e "$hierarchy/cgroup.procs" ] || continue
    mkdir "$hierarchy/$cgroup" && chown -R "$user" "$hierarchy/$cgroup" && echo $$ >"$hierarchy/$cgroup/cgroup.procs" ||
      return
  done
}

prepare_session() {
  mount_empty /run/systemd && mkdir /run/systemd/system && mount_empty /run/user &&
    install --directory --mode=700 --owner="$user" "/run/user/$(id -u "$user")" &&
    mount_empty /opt && chown "$user" /opt && enter_own_cgroup
}

if prepare_session; then export TARN_SESSION=yes; fi
"$memory_holder" "$foreign_megabytes" >/dev/null &
export TARN_FOREIGN_PID=$!
exec setpriv "--reuid=$user" "--regid=$(id -g "$user")" --init-groups "$@"
