#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# check_packages.sh: installs Tarn into a folder and checks every file for those who read it, makes the Debian package
# and has it judged; as root, installs it in a fresh Debian, runs it there and removes it again. The fresh system is
# kept in build/package-root.tar, and what was downloaded for it in build/package-archives, for the next time. Installs
# what is missing.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

cd "$repository"
readonly work="$repository/build/packages"
readonly root="$work/root" fresh="$work/fresh"
readonly kept_root="$repository/build/package-root.tar" kept_archives="$repository/build/package-archives"
apart_process=""
no_network=()
readonly most_exposure=61  # of 100

# shellcheck disable=SC2317
clean_up() {
  # With it goes all that runs and is mounted there; it heeds no other signal.
  if [ -n "$apart_process" ]; then
    kill -KILL "$apart_process" 2>/dev/null || true
    wait "$apart_process" 2>/dev/null || true
  fi
  rm -rf "$fresh"
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

# value VARIABLE: what the build was configured with.
value() {
  sed -n "s/^$1:[A-Z]*=//p" build/release/CMakeCache.txt
}

# says_nothing WHAT COMMAND...: runs a command that succeeds and has nothing to say when all is well.
says_nothing() {
  local what="$1" said status=0
  shift
  said="$("$@" 2>&1)" || status=$?
  if [ "$status" -ne 0 ] || [ -n "$said" ]; then fail "$what (exit status $status): $said"; fi
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
  says_nothing "The desktop file" desktop-file-validate "$share/applications/$id.desktop"
  local said
  said="$(appstreamcli validate --no-net --no-color "$share/metainfo/$id.metainfo.xml")" || fail "The metainfo: $said"
  says_nothing "The manual page" manual_page_warnings "$share/man/man1/tarn.1"
  lexgrog "$share/man/man1/tarn.1" >/dev/null || fail "The manual page does not tell its name and purpose."
  says_nothing "The icon" python3 -c 'import sys, xml.dom.minidom; xml.dom.minidom.parse(sys.argv[1])' \
    "$share/icons/hicolor/scalable/apps/$id.svg"
}

# The unit, with the program where it lies here. systemd wants a folder for what runs, and may want more than there is.
# By systemd's own measure it may not become more permissive; docs/security.md says what keeps it from less.
check_unit() {
  local unit="$work/unit/tarn.service" runtime="$work/runtime" said
  mkdir "${unit%/*}" "$runtime"
  chmod 700 "$runtime"
  sed "s#^ExecStart=/usr/#ExecStart=$root/usr/#" "$root/usr/lib/systemd/user/tarn.service" >"$unit"
  said="$(XDG_RUNTIME_DIR="$runtime" systemd-analyze --user --man=no verify "$unit" 2>&1)" || true
  case "$said" in
    "")
      said="$(XDG_RUNTIME_DIR="$runtime" systemd-analyze --user security --no-pager --offline=yes \
        --threshold="$most_exposure" "$unit" 2>&1)" || fail "The unit forbids too little: $said"
      ;;
    *"Failed to initialize manager"*) say "systemd can not run here, so its unit was not checked: $said" ;;
    *) fail "The unit: $said" ;;
  esac
}

make_package() {
  rm -f "$work"/*.deb
  cpack --config build/release/CPackConfig.cmake -B "$work" >"$work/cpack.log" 2>&1 ||
    fail "The package could not be made: $(cat "$work/cpack.log")"
  package="$(find "$work" -maxdepth 1 -name '*.deb')"
  [ -f "$package" ] || fail "CPack left no package: $(cat "$work/cpack.log")"
}

# Every text that names a version names this one.
check_versions() {
  local version changelog release
  version="$(dpkg-deb --field "$package" Version)"
  changelog="$(dpkg-parsechangelog --file packaging/linux/debian/changelog --show-field Version)"
  [ "$changelog" = "$version" ] || fail "The changelog is about $changelog, the package is $version."
  release="$(sed -n 's/.*<release version="\([^"]*\)".*/\1/p' "$root/usr/share/metainfo/$id.metainfo.xml" | head -n 1)"
  [ "$release" = "${version%-*}" ] || fail "The metainfo is about $release, the package is $version."
}

judge_package() {
  local said
  # A package's first upload to Debian closes the request for it; this one is not uploaded there.
  said="$(lintian --allow-root --no-cfg --fail-on error,warning --suppress-tags initial-upload-closes-no-bugs \
    "$package" 2>&1)" || fail "lintian refuses the package: $said"
  [ -z "$said" ] || say "$said"
}

# apart WORD...: runs a command, with words for unshare before it, that has processes and mounts of its own, which end
# with it.
apart() {
  local status=0
  unshare --mount --pid --fork --kill-child "$@" </dev/null &
  apart_process=$!
  wait "$apart_process" || status=$?
  apart_process=""
  return "$status"
}

make_fresh_root() {
  [ ! -f "$kept_root" ] || return 0
  local mirror codename
  codename="$(. /etc/os-release && printf '%s' "$VERSION_CODENAME")"
  # shellcheck disable=SC2016
  mirror="$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' "Codename: $codename" \
    'Component: main' | head -n 1)"
  say "Making a fresh system (Debian $codename)"
  apart --mount-proc debootstrap --variant=minbase "$codename" "$fresh" "${mirror:-http://deb.debian.org/debian}" \
    >"$work/debootstrap.log" 2>&1 ||
    fail "debootstrap could not make a fresh system: $(tail -n 20 "$work/debootstrap.log")"
  find "$fresh/var/cache/apt/archives" -name '*.deb' -delete
  # It is thrown away: nothing in it has to survive a power cut, and no service has to run.
  echo force-unsafe-io >"$fresh/etc/dpkg/dpkg.cfg.d/in-a-hurry"
  printf '#!/bin/sh\nexit 101\n' >"$fresh/usr/sbin/policy-rc.d"
  chmod 755 "$fresh/usr/sbin/policy-rc.d"
  tar --create --numeric-owner --file "$kept_root.new" --directory "$fresh" .
  mv "$kept_root.new" "$kept_root"
  rm -rf "$fresh"
}

# in_root WORD...: runs a step of in_package_root.sh in the fresh system.
in_root() {
  apart --root="$fresh" --mount-proc "${no_network[@]}" env --ignore-environment LC_ALL=C.UTF-8 \
    DEBIAN_FRONTEND=noninteractive PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
    "http_proxy=${http_proxy:-}" /check/in_package_root.sh "$@"
}

try_in_fresh_root() {
  rm -rf "$fresh"
  make_fresh_root
  mkdir -p "$fresh/check" "$kept_archives"
  tar --extract --numeric-owner --file "$kept_root" --directory "$fresh"
  cp scripts/in_package_root.sh scripts/lib.sh "$package" "$fresh/check/"
  cp --dereference /etc/resolv.conf /etc/hosts "$fresh/etc/"
  find "$kept_archives" -name '*.deb' -exec cp --link --force --target-directory "$fresh/var/cache/apt/archives" {} +

  in_root install "/check/${package##*/}"
  find "$kept_archives" -name '*.deb' -delete
  find "$fresh/var/cache/apt/archives" -name '*.deb' -exec cp --link --force --target-directory "$kept_archives" {} +
  # Tarn needs no network, and what it does there reaches nothing outside.
  no_network=(--net)
  in_root try "$id"
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
make_package
check_versions
judge_package
say "Installed files and package are in order: ${package#"$repository/"}"

if is_root; then
  try_in_fresh_root
  say "The package was installed in a fresh system, ran there, was started by the bus and by its menu entry, and left" \
    "nothing behind when it was removed. All this took $SECONDS seconds."
else
  say "Only root can make a fresh system: the package was NOT installed and tried in one." \
    "All else took $SECONDS seconds."
fi
