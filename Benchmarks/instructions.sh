#!/usr/bin/env bash
# Instructions that each operation takes, counted by callgrind, against the budget: Benchmarks/instructions.sh [accept]
# More than the budget and 3 % ends with status 1. `accept` writes what was counted to Benchmarks/Budget.txt, for a change
# that is meant. Counts are of one compiler and C library; the budget is that of Debian 12 on amd64. Wrong use ends with
# status 2.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
source "$root/Scripts/setup.sh"
export LC_ALL=C
answer_help "$@"
case "$#${1-}" in
  0) mode=check ;;
  1check | 1accept) mode=$1 ;;
  *) wrong_use "expected accept or nothing, not '$*'" ;;
esac
budget=$root/Benchmarks/Budget.txt
[ "$mode" = accept ] || [ -s "$budget" ] || die "there is no budget yet: Benchmarks/instructions.sh accept"
source "$root/Benchmarks/setup.sh"

counts=$(mktemp -d "$root/build/instructions.XXXXXX")
# Two runs do not disturb each other; what the last one counted stays in build/instructions.
trap 'rm -rf "$root/build/instructions"; mv -T "$counts" "$root/build/instructions" 2>/dev/null || rm -rf "$counts"' EXIT
# The C library takes its plain functions, whatever this processor has beside them.
export GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX2,-AVX2_Usable,-AVX512F,-AVX512VL,-AVX512BW,-BMI1,-BMI2,-ERMS,-FSRM,-RTM,-MOVBE,-SSE4_2,-SSSE3,-LZCNT
TZ=UTC valgrind --tool=callgrind --callgrind-out-file="$counts/dump" "$tal_bench" --instructions \
  >"$counts/operations" 2>"$counts/log" || { cat "$counts/log" >&2; die "cannot count"; }
dumps=("$counts"/dump.*)
[ -f "${dumps[0]}" ] || die "nothing was counted: see build/instructions/log"
# A dump names its operation and its total; the list says how often it was done.
awk '
  FILENAME ~ /operations$/ { times[$1] = $2; next }
  /^desc: Trigger: Client Request: / { name = $5 }
  /^totals: / { if (name != "") printf "%s %.1f\n", name, $2 / times[name]; name = "" }
' "$counts/operations" "${dumps[@]}" | sort >"$counts/counted"
[ -s "$counts/counted" ] || die "nothing was counted: see build/instructions"
[ "$(wc -l <"$counts/counted")" -eq "$(wc -l <"$counts/operations")" ] ||
  die "not every operation was counted: $(wc -l <"$counts/counted") of $(wc -l <"$counts/operations")"

if [ "$mode" = accept ]; then
  cp "$counts/counted" "$budget"
  say "$(wc -l <"$budget") operations accepted in Benchmarks/Budget.txt"
  exit
fi
awk -v margin=1.03 '
  FILENAME == ARGV[1] { budget[$1] = $2; next }
  !($1 in budget) { print $1 ": " $2 " instructions, no budget yet"; bad = 1; next }
  { seen[$1] = 1; count++ }
  $2 > budget[$1] * margin + 1 { printf "%s: %s instructions, the budget is %s\n", $1, $2, budget[$1]; bad = 1 }
  END {
    for (name in budget) if (!(name in seen)) { print name ": in the budget, but not counted"; bad = 1 }
    if (bad) print "If this is meant: Benchmarks/instructions.sh accept"
    else print count " operations within their budgets"
    exit bad
  }' "$budget" "$counts/counted"
