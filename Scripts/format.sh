#!/usr/bin/env bash
# Formats all C++ of the repository as .clang-format says: Scripts/format.sh [--check]
# With --check nothing is changed. Exit status: 0 all is formatted, 1 something is not or failed, 2 wrong use.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
source "$root/Scripts/setup.sh"

answer_help "$@"
case "$#${1-}" in
  0) mode=(-i) ;;
  1--check) mode=(--dry-run --Werror) ;;
  *) wrong_use "expected --check or nothing, not '$*'" ;;
esac

# Versions format differently: everybody takes the one of Debian 12.
need_packages clang-format-14 git
cd "$root"
mapfile -d '' -t list < <(git ls-files -z --cached --others --exclude-standard --deduplicate '*.cpp' '*.h' '*.h.in')
wait $! || die "git cannot list the files of $root"
files=()
for file in "${list[@]}"; do
  [ ! -f "$file" ] || files+=("$file")
done
[ ${#files[@]} -gt 0 ] || die "git knows of no C++ in $root"
clang_format() { printf '%s\0' "${files[@]}" | xargs -0 -n 20 -P "$(nproc)" clang-format-14 "$@" --; }
clang_format "${mode[@]}" >&2 || {
  # Was it that files are not formatted, or clang-format itself that failed?
  [ "${mode[0]}" != -i ] && clang_format >/dev/null 2>&1 || die "clang-format-14 failed"
  say "Scripts/format.sh formats these files"
  exit 1
}
