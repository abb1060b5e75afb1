#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# check_packages.sh: installs Tarn into a folder and validates every installed file; builds the Debian package and runs
# lintian on it; as root, installs the package in a fresh Debian (debootstrap), runs it there and purges it. The fresh
# system is cached in build/package-root.tar, its downloaded packages in build/package-archives. Installs missing
# packages.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

cd "$repository"
readonly work="$repository/build/packages"
readonly root="$work/root" fresh="$work/fresh"
readonly cached_root="$repository/build/package-root.tar" cached_archives="$repository/build/package-archives"
namespace_process=""
no_network=()
readonly maximum_exposure=61  # of 100, as systemd-analyze rates it

# shellcheck disable=SC2317
clean_up() {
  # The process is init of a PID namespace and ignores other signals. The kernel ends the namespace with it.
  if [ -n "$namespace_process" ]; then
    kill -KILL "$namespace_process" 2>/dev/null || true
    wait "$namespace_process" 2>/dev/null || true
  fi
  rm -rf "$fresh"
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

# value VARIABLE: prints a variable of the CMake cache.
value() {
  sed -n "s/^$1:[A-Z]*=//p" build/release/CMakeCache.txt
}

# expect_silence WHAT COMMAND...: fails unless a command succeeds without output.
expect_silence() {
  local what="$1" output status=0
  shift
  output="$("$@" 2>&1)" || status=$?
  if [ "$status" -ne 0 ] || [ -n "$output" ]; then fail "$what (exit status $status): $output"; fi
}

install_into_folder() {
  DESTDIR="$root" cmake --install build/release --prefix /usr >/dev/null
  local expected installed
  expected="$(sort <<END
./usr/bin/tarn
./usr/lib/systemd/user/tarn.service
./usr/share/applications/$id.desktop
./usr/share/dbus-1/services/$id.service
./usr/share/doc/tarn/copyright
./usr/share/icons/hicolor/scalable/apps/$id.svg
./usr/share/man/man1/tarn.1
./usr/share/metainfo/$id.metainfo.xml
END
  )"
  installed="$(cd "$root" && find . -type f | sort)"
  [ "$installed" = "$expected" ] ||
    fail "Installed (>) is not what is expected (<): $(diff <(printf '%s\n' "$expected") <(printf '%s\n' "$installed"))"
}

manual_page_warnings() {
  LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings --local-file "$1" >/dev/null
}

check_files() {
  local share="$root/usr/share"
  expect_silence "The desktop file" desktop-file-validate "$share/applications/$id.desktop"
  local output
  output="$(appstreamcli validate --no-net --no-color "$share/metainfo/$id.metainfo.xml")" || fail "The metainfo: $output"
  expect_silence "The manual page" manual_page_warnings "$share/man/man1/tarn.1"
  lexgrog "$share/man/man1/tarn.1" >/dev/null || fail "The manual page has no valid NAME section."
  expect_silence "The icon" python3 -c 'import sys, xml.dom.minidom; xml.dom.minidom.parse(sys.argv[1])' \
    "$share/icons/hicolor/scalable/apps/$id.svg"
}

# Verifies the systemd unit with the path of the program in the folder. systemd-analyze needs a runtime directory and may
# fail where systemd cannot run. The exposure that it computes must not grow; docs/security.md explains its value.
check_unit() {
  local unit="$work/unit/tarn.service" runtime="$work/runtime" output
  mkdir "${unit%/*}" "$runtime"
  chmod 700 "$runtime"
  sed "s#^ExecStart=/usr/#ExecStart=$root/usr/#" "$root/usr/lib/systemd/user/tarn.service" >"$unit"
  output="$(XDG_RUNTIME_DIR="$runtime" systemd-analyze --user --man=no verify "$unit" 2>&1)" || true
  case "$output" in
    "")
      output="$(XDG_RUNTIME_DIR="$runtime" systemd-analyze --user security --no-pager --offline=yes \
        --threshold="$maximum_exposure" "$unit" 2>&1)" || fail "The unit is more permissive than before: $output"
      ;;
    *"Failed to initialize manager"*) say "NOT CHECKED: the systemd unit, because systemd cannot run here: $output" ;;
    *) fail "The unit: $output" ;;
  esac
}

build_package() {
  rm -f "$work"/*.deb
  cpack --config build/release/CPackConfig.cmake -B "$work" >"$work/cpack.log" 2>&1 ||
    fail "CPack failed: $(cat "$work/cpack.log")"
  package="$(find "$work" -maxdepth 1 -name '*.deb')"
  [ -f "$package" ] || fail "CPack built no package: $(cat "$work/cpack.log")"
}

# The changelog and the metainfo name the version of the package.
check_versions() {
  local version changelog release
  version="$(dpkg-deb --field "$package" Version)"
  changelog="$(dpkg-deb --fsys-tarfile "$package" | tar --extract --to-stdout ./usr/share/doc/tarn/changelog.Debian.gz |
    gunzip | dpkg-parsechangelog --file - --show-field Version)"
  [ "$changelog" = "$version" ] || fail "The changelog names version $changelog, the package is $version."
  release="$(sed -n 's/.*<release version="\([^"]*\)".*/\1/p' "$root/usr/share/metainfo/$id.metainfo.xml" | head -n 1)"
  [ "$release" = "${version%-*}" ] || fail "The metainfo names version $release, the package is $version."
}

run_lintian() {
  local output
  # The suppressed tag is about uploads to Debian.
  output="$(lintian --allow-root --no-cfg --fail-on error,warning --suppress-tags initial-upload-closes-no-bugs \
    "$package" 2>&1)" || fail "lintian reports: $output"
  [ -z "$output" ] || say "$output"
}

# in_namespaces [UNSHARE OPTION...] COMMAND...: runs a command in separate mount and pid namespaces, so that its
# processes and mounts end with the command.
in_namespaces() {
  local status=0
  unshare --mount --pid --fork --kill-child "$@" </dev/null &
  namespace_process=$!
  wait "$namespace_process" || status=$?
  namespace_process=""
  return "$status"
}

create_fresh_root() {
  [ ! -f "$cached_root" ] || return 0
  local mirror codename
  codename="$(. /etc/os-release && printf '%s' "$VERSION_CODENAME")"
  # shellcheck disable=SC2016
  mirror="$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' "Codename: $codename" \
    'Component: main' | head -n 1)"
  say "Creating a fresh system (Debian $codename)"
  in_namespaces --mount-proc debootstrap --variant=minbase "$codename" "$fresh" "${mirror:-http://deb.debian.org/debian}" \
    >"$work/debootstrap.log" 2>&1 ||
    fail "debootstrap failed: $(tail -n 20 "$work/debootstrap.log")"
  find "$fresh/var/cache/apt/archives" -name '*.deb' -delete
  # The system is temporary: dpkg need not sync files, and no service may start.
  echo force-unsafe-io >"$fresh/etc/dpkg/dpkg.cfg.d/unsafe-io"
  printf '#!/bin/sh\nexit 101\n' >"$fresh/usr/sbin/policy-rc.d"
  chmod 755 "$fresh/usr/sbin/policy-rc.d"
  tar --create --numeric-owner --file "$cached_root.new" --directory "$fresh" .
  mv "$cached_root.new" "$cached_root"
  rm -rf "$fresh"
}

# in_root ARGUMENT...: runs in_package_root.sh in the fresh system.
in_root() {
  in_namespaces --root="$fresh" --mount-proc "${no_network[@]}" env --ignore-environment LC_ALL=C.UTF-8 \
    DEBIAN_FRONTEND=noninteractive PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
    "http_proxy=${http_proxy:-}" /check/in_package_root.sh "$@"
}

test_in_fresh_root() {
  rm -rf "$fresh"
  create_fresh_root
  mkdir -p "$fresh/check" "$cached_archives"
  tar --extract --numeric-owner --file "$cached_root" --directory "$fresh"
  cp scripts/in_package_root.sh scripts/lib.sh "$package" "$fresh/check/"
  cp --dereference /etc/resolv.conf /etc/hosts "$fresh/etc/"
  find "$cached_archives" -name '*.deb' -exec cp --link --force --target-directory "$fresh/var/cache/apt/archives" {} +

  in_root install "/check/${package##*/}"
  find "$cached_archives" -name '*.deb' -delete
  find "$fresh/var/cache/apt/archives" -name '*.deb' -exec cp --link --force --target-directory "$cached_archives" {} +
  # Tarn needs no network.
  no_network=(--net)
  in_root test "$id"
  in_root purge
}

scripts/install_packages.sh build packages
scripts/build.sh release
rm -rf "$work"
mkdir -p "$root"
id="$(value TARN_APPLICATION_ID)"
install_into_folder
check_files
check_unit
build_package
check_versions
run_lintian
say "Installed files and package are valid: ${package#"$repository/"}"

if is_root; then
  test_in_fresh_root
  say "The package was installed in a fresh system, was started by hand, by D-Bus and by its desktop entry, and left" \
    "nothing behind when it was purged. This took $SECONDS seconds."
else
  say "NOT TESTED: the package in a fresh system, which only root can create. The other checks took $SECONDS seconds."
fi
