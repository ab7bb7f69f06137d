#!/usr/bin/env bash
# Makes the reference of the public headers, build/reference/html/index.html: Scripts/reference.sh
# Exit status: 0 made, 1 a declaration says nothing of itself or something failed, 2 wrong use.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
source "$root/Scripts/setup.sh"

answer_help "$@"
[ $# -eq 0 ] || wrong_use "expected nothing, not '$*'"
need_packages doxygen
cd "$root"
output=$root/build/reference
rm -rf "$output"
mkdir -p "$output"
folders=(Include Platform/*/Include DeviceStack/Include Format/Include)
# Paths in quotes, as doxygen wants them; sed takes none of their characters for its own.
list() { printf '"%s" ' "$@"; }
escaped() { sed 's/[\\&|]/\\&/g' <<<"$1"; }
version=$(sed -nE 's/^project\(.* VERSION ([0-9.]+).*/\1/p' CMakeLists.txt)
sed -e "s|@VERSION@|$version|" -e "s|@OUTPUT@|$(escaped "\"$output\"")|" \
  -e "s|@STRIP@|$(escaped "$(list "${folders[@]/#/$root/}")")|" \
  -e "s|@INPUT@|$(escaped "$(list "${folders[@]/#/$root/}" "$root/Docs/Reference.dox")")|" Docs/Doxyfile.in >"$output/Doxyfile"
doxygen "$output/Doxyfile" >"$output/log" 2>&1 || {
  sed "s|^$root/||" "$output/log" >&2
  die "the reference is not whole (see above)"
}
say "the reference: build/reference/html/index.html"
