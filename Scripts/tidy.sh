#!/usr/bin/env bash
# Runs clang-tidy over the libraries and the example: Scripts/tidy.sh [--all]
# With --all also over talctl, whose libraries' headers take most of the time. Looks only at what has changed since a
# file was found clean. Exit status: 0 nothing found, 1 something found or failed, 2 wrong use.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
source "$root/Scripts/setup.sh"

answer_help "$@"
targets=(TalObjectModel DeviceStack read_and_switch)
case "$#${1-}" in
  0) ;;
  1--all) targets=(all) ;;
  *) wrong_use "expected --all or nothing, not '$*'" ;;
esac
lock
need_packages "${build_packages[@]}" clang-tidy-14
tree=$root/build/tidy
if [ -f "$tree/build.ninja" ] && [ "$root/.clang-tidy" -nt "$tree/build.ninja" ]; then
  rm -r "$tree"  # other checks: every file anew
fi
build_preset tidy "${targets[@]}"
say "clang-tidy has nothing to say"
