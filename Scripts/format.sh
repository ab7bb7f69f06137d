#!/usr/bin/env bash
# Formats all C++ of the repository as .clang-format says: Scripts/format.sh [--check]
# With --check nothing is changed. Exit status: 0 all is formatted, 1 something is not or failed, 2 wrong use.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
source "$root/Scripts/setup.sh"

case ${1-} in
  '') mode=(-i) ;;
  --check) mode=(--dry-run --Werror) ;;
  *) say "error: expected --check or nothing, not '$1'"; exit 2 ;;
esac
[ $# -le 1 ] || { say "error: expected --check or nothing"; exit 2; }

# Versions format differently: everybody takes the one of Debian 12.
need_packages clang-format-14 git
cd "$root"
list=$(git ls-files --cached --others --exclude-standard --deduplicate '*.cpp' '*.h' '*.h.in') ||
  die "git cannot list the files of $root"
files=()
while IFS= read -r file; do
  [ ! -f "$file" ] || files+=("$file")
done <<<"$list"
printf '%s\0' "${files[@]}" | xargs -0 -n 20 -P "$(nproc)" clang-format-14 "${mode[@]}" >&2 || {
  say "Scripts/format.sh formats these files"
  exit 1
}
