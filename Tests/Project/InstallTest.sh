#!/usr/bin/env bash
# Installs a build, moves it elsewhere, and builds and runs a stranger's project on it.
# Usage: InstallTest.sh shared|static|provider SOURCE BUILD WORK [OPTION-FOR-CMAKE...]
set -euo pipefail
kind=$1 source=$2 build=$3 work=$4
options=(-G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_COMPILE_WARNING_AS_ERROR=ON "-DEXAMPLE=$source/Examples/ReadAndSwitch.cpp" "${@:5}")
fail() { printf 'error: %s\n' "$*" >&2; exit 1; }
expect() { [ "$2" = "$3" ] || fail "$1: got '$2', expected '$3'"; }

rm -rf "$work"
cmake --install "$build" --prefix "$work/staging" >/dev/null
mkdir "$work/else where"
mv "$work/staging" "$work/else where/root"
root="$work/else where/root"
lib=$(dirname "$(find "$root" -name 'libtalobjectmodel.*' | head -n1)")
! grep -rlF -e "$source" -e "$build" -e "$work" "$root" || fail "installed files name where they were made (above)"
case $kind in
  shared) [ ! -e "$lib/libtalobjectmodel.a" ] && [ -e "$lib/libtalobjectmodel.so" ] || fail "no shared library" ;;
  static) [ -z "$(find "$root" -name '*.so*')" ] || fail "a shared library in a static build" ;;
  provider) [ "$(ls "$root/include/talobjectmodel")" = Tal ] || fail "the platform of someone else is installed" ;;
esac

# CMake
consumer() { cmake -S "$source/Tests/Project/Consumer" -B "$work/$1" "-DCMAKE_PREFIX_PATH=$root" "-DWANTED=$2" "${options[@]}"; }
for version in 0.0.9 0.2 1.0; do
  ! consumer refused "$version" >"$work/log" 2>&1 || fail "find_package() takes what is no version $version"
  grep -q 'compatible with' "$work/log" || fail "not refused for its version: $(<"$work/log")"
done
consumer cmake 0.1 >/dev/null
ninja -C "$work/cmake" >/dev/null
expect CMake "$("$work/cmake/consumer")" '0C 1A, 8A 24, -30'
[ "$kind" != shared ] || expect "the example" "$("$work/cmake/example")" '18.5 degrees: heating on'
[ "$kind" != shared ] || expect talctl "$("$root/bin/talctl" encode 9.001 21)" 0C1A

# pkg-config
[ "$kind" != provider ] || exit 0
export PKG_CONFIG_PATH=$lib/pkgconfig
how=()
[ "$kind" = shared ] || how=(--static)
eval "flags=($(pkg-config "${how[@]}" --cflags --libs 'talobjectmodel >= 0.1'))"
c++ -std=c++17 -Wall -Werror "$source/Tests/Project/Consumer/main.cpp" -o "$work/by-pkg-config" "${flags[@]}"
expect pkg-config "$(LD_LIBRARY_PATH=$lib "$work/by-pkg-config")" '0C 1A, 8A 24, -30'
[ "$kind" != shared ] || {
  eval "flags=($(pkg-config --cflags --libs taldevicestack))"
  c++ -std=c++17 "$source/Examples/ReadAndSwitch.cpp" -o "$work/example" "${flags[@]}"
  expect "the example" "$(LD_LIBRARY_PATH=$lib "$work/example")" '18.5 degrees: heating on'
}
