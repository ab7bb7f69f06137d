#!/usr/bin/env bash
# Makes the Debian packages of this repository and checks them with lintian: Scripts/packages.sh [amd64|armhf...]
# Without arguments, for this machine's architecture. They stand in build/packages/ afterwards. Builds what it needs.
# Exit status: 0 made and without fault, 1 failed or lintian finds an error or a warning, 2 wrong use.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
source "$root/Scripts/setup.sh"
umask 022

answer_help "$@"
command -v dpkg >/dev/null || die "Debian packages can be made on Debian only"
native=$(dpkg --print-architecture)
[ $# -gt 0 ] || set -- "$native"
packages=("${build_packages[@]}" dpkg-dev file lintian)
for arch in "$@"; do
  case $arch in
    "$native") ;;
    armhf) packages+=(g++-arm-linux-gnueabihf qemu-user) ;;
    *) wrong_use "no packages are made for '$arch' here: expected $native or armhf" ;;
  esac
done
lock
need_packages "${packages[@]}"

sysroot=$root/build/armhf-sysroot
out=$root/build/packages
mkdir -p "$out"
for arch in "$@"; do
  preset=package
  options=()
  if [ "$arch" != "$native" ]; then
    preset=package-$arch
    # One that was made before packages were has no list of who owns its libraries.
    [ -s "$sysroot/shlibs.local" ] || "$root/Scripts/armhf/make-sysroot.sh" "$sysroot"
    export TAL_ARMHF_SYSROOT=$sysroot
    options=(-D "SHLIBDEPS_EXECUTABLE=$root/Scripts/armhf/shlibdeps.sh")
  fi
  build_preset "$preset"
  say "making packages for $arch"
  rm -rf "$out/$arch"
  cpack --config "$root/build/$preset/CPackConfig.cmake" -B "$out/$arch" "${options[@]}" >"$out/$arch.log" 2>&1 ||
    die "cpack failed: $(tail -n5 "$out/$arch.log") (all of it: $out/$arch.log)"
  rm -rf "$out/$arch/_CPack_Packages"
  lintian --no-cfg --allow-root --fail-on error,warning "$out/$arch"/*.deb >&2 ||
    die "lintian finds fault with the packages for $arch (above)"
  for deb in "$out/$arch"/*.deb; do
    # grep reads on to the end: a pipe that is left early would hide what it found.
    [ "$(dpkg-deb --fsys-tarfile "$deb" | tar -xO | grep -acF -e "$root" || true)" = 0 ] ||
      die "$(basename "$deb") names $root, where it was built"
    say "  ${deb#"$root/"}"
  done
done
