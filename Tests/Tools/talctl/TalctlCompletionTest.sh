#!/usr/bin/env bash
# Completion of talctl's command line: what bash gets for words, and what a shell makes of tabs that are typed.
# Usage: TalctlCompletionTest.sh COMPLETION [EMULATOR...] TALCTL
set -uo pipefail
completion=$(readlink -f "$1")
shift
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
cd "$dir" || exit 1
mkdir bin
printf '#!/bin/sh\nexec %s "$@"\n' "$(printf '%q ' "$@")" >bin/talctl
chmod +x bin/talctl
PATH=$PWD/bin:$PATH
printf '{"name": "x", "address": "1.1.9", "objects": [{"device": 1, "number": 1, "name": "attic: big lamp",
  "dpt": "1.001", "groupAddress": "1/1/1", "flags": ["read"]}]}' >'my house.json'
sed 's/attic: big lamp/$(touch ran)`touch ran`";touch ran;'"'"';touch ran;x/; s/";touch/\\&/' 'my house.json' >evil.json
mkdir logs
touch 06:00.log
failures=0

# expect WHAT ACTUAL EXPECTED
expect() {
  [ "$2" = "$3" ] && return
  printf '%s: got %q, expected %q\n' "$1" "$2" "$3"
  failures=$((failures + 1))
}

# Words as bash takes them apart, the last one or the one with ^ to be completed; what is offered, or with a star the first of it.
source "$completion"
while IFS='>' read -r line expected; do
  IFS='|' read -ra COMP_WORDS <<<"$line|"
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
  for i in "${!COMP_WORDS[@]}"; do
    [[ ${COMP_WORDS[i]} != *^ ]] || COMP_CWORD=$i COMP_WORDS[i]=${COMP_WORDS[i]%^}
  done
  COMPREPLY=()
  _talctl
  [[ $expected != *'*' ]] || { COMPREPLY=("${COMPREPLY[@]:0:1}") expected=${expected%'*'}; }
  expect "$line" "${COMPREPLY[*]}" "$expected"
done <<'END'
talctl|en>encode
talctl|re>request register
talctl|>encode*
talctl|encod|>
talctl|comp>
talctl|--js>--json
talctl|encode|--conv>--converter
talctl|encode|--converter|>direct table
talctl|encode|--converter|=|t>table
talctl|encode|--converter|=>direct table
talctl|--log-level|d>debug
talctl|encode|20>20.x 20.102 20.103
talctl|dpts|--converter|table|4>4.x 4.001 4.002
talctl|dpts|9.001|9.01>9.010 9.011
talctl|encode|1.001|o>on off
talctl|encode|9.001|>
talctl|encode|--|--r>
talctl|get|kitchen.l>kitchen.light kitchen.light.status
talctl|get|10010>100101 100103 100105 100107
talctl|get|--installation|my\ house.json|>attic:\ big\ lamp
talctl|get|--installation|"my house.json"|attic|:|\ b>\ big\ lamp
talctl|get|at^|--installation|my\ house.json>attic:\ big\ lamp
talctl|get|--installation|/no/such|>
talctl|get|--installation|/dev/stdin|>
talctl|monitor|--log|06|:|0>00.log
talctl|set|kitchen.light|t>true
talctl|set|kitchen.light|on|--f>--format
talctl|config|l>logs
talctl|get|--installation|my>my house.json
talctl|get|--installation|=|lo>logs
talctl|demo|--l>--lines --log-level
END

# Typed in a shell, with and without the helpers that complete the rest.
typed=$'talctl enc\t--converter=t\t9.001 -300\ntalctl get --installation my\t att\t\nexit\n'
shown=$(printf '%s' "$typed" | HOME=$dir TERM=dumb timeout 60 script -qec \
  "bash --noprofile --rcfile $(printf %q "$completion") -i" /dev/null 2>&1 | tr -d '\r')
expect 'typed encode' "$(grep -c 'DPT=9.1, f=-300 is out of the allowed range' <<<"$shown")" 1
expect 'typed get' "$(grep -c "'attic: big lamp' (100101, 1.001) has no value" <<<"$shown")" 1

# What an object is called is never run.
typed=''
for start in '\$' '"$' "'$"; do typed+='talctl get --installation evil.json '$start$'\t\n'; done
shown+=$(printf '%s\nexit\n' "$typed" | HOME=$dir TERM=dumb timeout 60 script -qec \
  "bash --noprofile --rcfile $(printf %q "$completion") -i" /dev/null 2>&1 | tr -d '\r')
expect 'names are not run' "$(ls ran 2>/dev/null)" ''
expect 'names are completed' "$(grep -c 'touch ran;x. (100101, 1.001) has no value' <<<"$shown")" 3
[ "$failures" -eq 0 ] || printf '%s\n' "$shown"

[ "$failures" -eq 0 ]
