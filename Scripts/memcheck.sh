#!/usr/bin/env bash
# Runs the tests under valgrind's memcheck: Scripts/memcheck.sh [--short]
# An error of memory, a leak, a test that fails and a program without tests end it with status 1, wrong use with 2.
# --short takes what is done in two minutes.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
source "$root/Scripts/setup.sh"

answer_help "$@"
is_short=
case "$#${1-}" in
  0) ;;
  1--short) is_short=yes ;;
  *) wrong_use "expected --short or nothing, not '$*'" ;;
esac

lock
need_packages "${build_packages[@]}" "${test_packages[@]}" valgrind
build_preset dev
unlock

logs=$root/build/memcheck
mkdir -p "$logs"
# The threads of the logging library live as long as the process.
cat >"$logs/known.supp" <<'END'
{
   threads-of-log4cplus
   Memcheck:Leak
   match-leak-kinds: possible
   ...
   fun:_dl_allocate_tls
   ...
   fun:pthread_create*
   ...
   obj:*/liblog4cplus*
}
END

# check PROGRAM FILTER: a program's tests, reported in one line.
# Death tests run too: the process that is to die is started anew, outside valgrind, and by fork(), as valgrind does not
# know the clone() that is used otherwise. Nothing is put in the place of a program's own operator new.
check() {
  local program=$1 log=$logs/$1.log status=0 start=$SECONDS tests errors
  rm -f "$log" "$log.out"
  LC_ALL=C TAL_TEST_CONVERSIONS=2000 timeout 1800 valgrind --error-exitcode=99 --leak-check=full \
    --errors-for-leak-kinds=definite,indirect,possible --show-leak-kinds=definite,indirect,possible \
    --suppressions="$logs/known.supp" --num-callers=30 --fair-sched=yes --trace-children=no \
    --soname-synonyms=somalloc=nouserintercepts --child-silent-after-fork=yes --log-file="$log" "$root/build/dev/bin/$program" --gtest_brief=1 \
    --gtest_death_test_use_fork=1 --gtest_filter="$2" >"$log.out" 2>&1 || status=$?
  tests=$(sed -n 's/.* \([0-9]* tests\?\) from .* ran.*/\1/p' "$log.out")
  errors=$(sed -n 's/.*ERROR SUMMARY: //p' "$log")
  printf '%-18s %4d s, %s, %s\n' "$program" $((SECONDS - start)) "${tests:-no tests}" "${errors:-no word of errors}"
  [ "$status" -ne 0 ] || [[ $tests == [1-9]* && $errors ]] || status=1
  [ "$status" -eq 0 ] || say "  status $status: see $log and $log.out"
  return "$status"
}

failed=
if [ "$is_short" ]; then
  check platform_tests '*' || failed=yes
  check allocation_tests '*' || failed=yes
  check devicestack_tests 'Installation*:TelegramLog*:LogBus*:*Telegram*' || failed=yes
  check talctl_tests 'TalctlHouse.*:TalctlMonitor.Plays*:TalctlConfig.*:TalctlLines.*' || failed=yes
else
  # Left out is what counts on speed: tests under load, and those that want no word of a slow decode, of which the first
  # is one here.
  for program in platform_tests allocation_tests internal_tests devicestack_tests talctl_tests golden_tests; do
    check "$program" '-*UnderLoad' || failed=yes
  done
  check objectmodel_tests '-*UnderLoad:DirectConversion.*:GroupValueToAroValue.*' || failed=yes
fi
[ ! "$failed" ] || die "errors of memory, leaks, failed tests or none"
