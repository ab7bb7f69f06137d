#!/usr/bin/env bash
# Tries the packages as a newcomer would: Scripts/try-packages.sh [amd64|armhf...]
# For this machine's architecture (the default), in a minimal Debian of its own: installs them, runs talctl, builds and
# runs the example, removes them and looks for what is left. For armhf: reads them and runs talctl under emulation.
# Makes the packages when they are missing. Needs root for the minimal Debian; no mount is left.
# Exit status: 0 all is well, 1 failed, 2 wrong use.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
source "$root/Scripts/setup.sh"
export LC_ALL=C

answer_help "$@"
command -v dpkg >/dev/null || die "Debian packages can be tried on Debian only"
native=$(dpkg --print-architecture)
[ $# -gt 0 ] || set -- "$native"
for arch in "$@"; do
  case $arch in "$native" | armhf) ;; *) wrong_use "expected $native or armhf, not '$arch'" ;; esac
  ls "$root/build/packages/$arch"/*.deb >/dev/null 2>&1 || "$root/Scripts/packages.sh" "$arch"
done
work=$(mktemp -d "$root/build/try-packages.XXXXXX")
trap 'rm -rf --one-file-system "$work"' EXIT
expect() { [ "$2" = "$3" ] || die "$1: got '$2', expected '$3'"; say "  $1: ${2:-none}"; }

# ---- a minimal Debian ----
# Mounts that a step needs end with its processes.
apart() { unshare --mount --pid --fork -- "$@"; }
in_debian() { apart chroot "$work" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 \
  DEBIAN_FRONTEND=noninteractive "$@"; }

make_debian() {  # make_debian ARCHIVE
  local mirror
  mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' | grep -E '/debian/?$' | head -n1 || true)
  [ "$mirror" ] || die "no Debian mirror in the machine's package sources"
  say "making a minimal Debian"
  apart debootstrap --variant=minbase bookworm "$work/new" "$mirror" >"$root/build/debootstrap.log" 2>&1 ||
    die "debootstrap failed: $(tail -n1 "$root/build/debootstrap.log") (all of it: $root/build/debootstrap.log)"
  tar -C "$work/new" --one-file-system -cf "$1.new" .
  mv "$1.new" "$1"
  rm -rf --one-file-system "$work/new"
}

# What packages brought, is there, and belongs to no other package.
left_of() {
  local path
  for deb in "$@"; do dpkg-deb --fsys-tarfile "$deb" | tar -t | sed 's|^\./||; /^$/d'; done | sort -u |
    while read -r path; do
      if { [ -e "$work/$path" ] || [ -L "$work/$path" ]; } && ! in_debian dpkg -S "/${path%/}" >/dev/null 2>&1 </dev/null; then echo "/$path"; fi
    done
}

try_native() {
  [ "$(id -u)" -eq 0 ] || die "a minimal Debian can be made by root only"
  need_packages debootstrap
  local base=$root/build/debian-base.tar
  [ -f "$base" ] || make_debian "$base"
  tar -C "$work" -xf "$base"
  # Packages come from where the machine's come from.
  rm -rf "$work/etc/apt"
  cp -a /etc/apt "$work/etc/apt"
  cp -L /etc/resolv.conf "$work/etc/resolv.conf"
  mkdir "$work/home/new"
  cp "$root/build/packages/$native"/*.deb "$root/Tests/Project/Consumer"/* "$work/home/new"

  say "installing"
  in_debian sh -ec 'cd /home/new; apt-get -qq update; apt-get -qq -y --no-install-recommends install ./*.deb g++ cmake make \
    pkg-config man-db' >"$root/build/try-packages.log" 2>&1 ||
    die "apt-get cannot install the packages: $(grep -m1 '^E: ' "$root/build/try-packages.log") (all of it: $root/build/try-packages.log)"
  expect "talctl encode 9.001 21" "$(in_debian talctl encode 9.001 21)" 0C1A
  expect "talctl decode 11.001 01015A" "$(in_debian talctl decode 11.001 01015A)" 1990-01-01
  expect "man talctl" "$(in_debian sh -c 'man talctl | head -n1 | cut -d" " -f1')" "TALCTL(1)"
  expect "completion of decod" "$(in_debian bash -c '. /usr/share/bash-completion/completions/talctl
    COMP_WORDS=(talctl decod) COMP_CWORD=1; _talctl; echo "${COMPREPLY[*]}"')" decode
  expect "the tutorial's application, by pkg-config" "$(in_debian sh -ec 'cd /home/new
    block() { sed -n "/^\`\`\`$1 $2\$/,/^\`\`\`\$/{/^\`\`\`/d;p}" /usr/share/doc/talobjectmodel-doc/Docs/Tutorial.md; }
    block cpp heating.heating.cpp >heating.cpp; block json house.json >house.json
    g++ -std=c++17 heating.cpp -o heating $(pkg-config --cflags --libs taldevicestack)
    ./heating house.json 21')" "18.5 degrees, wanted 21: heating on"
  expect "the example, by pkg-config" "$(in_debian sh -ec 'cd /home/new
    g++ -std=c++17 /usr/share/doc/talobjectmodel-doc/examples/ReadAndSwitch.cpp -o heating $(pkg-config --cflags --libs taldevicestack)
    ./heating')" "18.5 degrees: heating on"
  expect "a project of CMake" "$(in_debian sh -ec 'cd /home/new
    cmake -B by-cmake -DWANTED=0.1 -DEXAMPLE=/usr/share/doc/talobjectmodel-doc/examples/ReadAndSwitch.cpp >log
    make -C by-cmake consumer >>log
    by-cmake/consumer')" "0C 1A, 8A 24, -30"

  say "removing"
  in_debian apt-get -qq -y purge '^(lib)?talobjectmodel.*' >"$root/build/try-packages.log" 2>&1 ||
    die "apt-get cannot remove the packages (see $root/build/try-packages.log)"
  expect "files left" "$(left_of "$work/home/new"/*.deb)" ""
  expect "packages left" "$(in_debian dpkg-query -W -f '${Package} ' '*talobjectmodel*' 2>/dev/null || true)" ""
}

# ---- 32-bit ARM ----
# The names in a package, with any architecture's folder of libraries.
names() { dpkg-deb --fsys-tarfile "$1" | tar -t | sed -E 's/(arm-linux-gnueabihf|x86_64-linux-gnu|aarch64-linux-gnu)/TRIPLET/' | sort; }

try_armhf() {
  need_packages binutils qemu-user
  local sysroot=$root/build/armhf-sysroot deb name file library owner depends other
  for deb in "$root/build/packages/armhf"/*.deb; do
    name=$(dpkg-deb -f "$deb" Package)
    dpkg-deb -R "$deb" "$work/$name"
    cat "$work/$name/DEBIAN/shlibs" >>"$work/shlibs" 2>/dev/null || true
    [ "$name" != "${name%-doc}" ] || expect "$name is for" "$(dpkg-deb -f "$deb" Architecture)" armhf
    other=("$root/build/packages/$native/${name}"_*.deb)
    if [ "$native" != armhf ] && [ -f "${other[0]}" ]; then
      diff <(names "${other[0]}") <(names "$deb") >&2 || die "$name has other files than that for $native"
    fi
  done
  # Every library that a file asks for is in a package that its package depends on.
  cat "$sysroot/shlibs.local" >>"$work/shlibs"
  while read -r file; do
    readelf -h "$file" | grep 'Machine: *ARM$' >/dev/null || die "${file#"$work/"} is not for 32-bit ARM"
    name=${file#"$work/"}
    name=${name%%/*}
    while read -r library; do
      owner=$(awk -v library="$library" '$1 ".so." $2 == library { print $3; exit }' "$work/shlibs")
      [ "$owner" ] || die "$name needs $library, which is in no package that is known"
      depends=$(sed -n 's/^Depends://p' "$work/$name/DEBIAN/control" | tr ',\n' '  ')
      [ "$owner" = "$name" ] || [[ $depends == *" $owner "* ]] ||
        die "$name needs $library and does not depend on $owner"
    done < <(readelf -d "$file" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
    say "  ${file#"$work/"}: all libraries are depended on"
  done < <(find "$work" -type f \( -name '*.so.*' -o -path '*/usr/bin/*' \) | sort)
  expect "talctl encode 9.001 21" "$(timeout 60 qemu-arm -L "$sysroot" \
    -E "LD_LIBRARY_PATH=$(echo "$work"/libtalobjectmodel*/usr/lib/arm-linux-gnueabihf | tr ' ' :)" \
    "$work/talobjectmodel-tools/usr/bin/talctl" encode 9.001 21)" 0C1A
}

for arch in "$@"; do
  say "trying the packages for $arch"
  if [ "$arch" = "$native" ]; then try_native; else try_armhf; fi
  rm -rf --one-file-system "${work:?}"/*
done
