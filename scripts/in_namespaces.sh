#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# in_session_rooms.sh USER CONTROL_GROUP COMMAND...: as root, in a mount name space of its own, prepares what a
# session manager of USER and installed applications take: a runtime directory of the user, the sign that the
# session manager runs this system, a control group of the user's own, and an empty /opt. Then runs COMMAND.
# Nothing of it is seen outside, but the control group, which is the caller's to remove.
set -euo pipefail

user="$1"
control_group="$2"
shift 2

mount_empty() {
  mkdir -p "$1"
  mount -t tmpfs -o mode=755 none "$1"
}

mount_empty /run/systemd
mkdir /run/systemd/system
mount_empty /run/user
install --directory --mode=700 --owner="$user" "/run/user/$(id -u "$user")"
mount_empty /opt
chown "$user" /opt

# One hierarchy, or the older layout with the manager's own beside it.
for hierarchy in /sys/fs/cgroup /sys/fs/cgroup/unified /sys/fs/cgroup/systemd; do
  [ -e "$hierarchy/cgroup.procs" ] || continue
  mkdir "$hierarchy/$control_group"
  chown -R "$user" "$hierarchy/$control_group"
  echo $$ >"$hierarchy/$control_group/cgroup.procs"
done

exec "$@"
