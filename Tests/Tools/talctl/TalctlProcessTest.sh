#!/usr/bin/env bash
# talctl as a process: disks that are full, files that cannot be read or written, readers that go away, signals.
# Usage: TalctlProcessTest.sh [EMULATOR...] TALCTL
set -uo pipefail
talctl=("$@")
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
cd "$dir" || exit 1
failures=0

# expect WHAT ACTUAL EXPECTED
expect() {
  [ "$2" = "$3" ] && return
  printf '%s: got %q, expected %q\n' "$1" "$2" "$3"
  failures=$((failures + 1))
}

# run ARGUMENT...: sets status and err; standard output goes where it goes.
run() {
  timeout 60 "$@" 2>err
  status=$?
  err=$(<err)
}

# ---- outputs that are closed, values that are missing ----
run "${talctl[@]}" encode 9.001 21 >&-
expect 'closed output' "$status $err" '1 talctl: standard output cannot be written'
run "${talctl[@]}" dpts --html= --json >/dev/null
expect 'option without value' "$status ${err%%$'\n'*} $(ls)" '2 talctl: --html: the value is missing err'

# ---- files ----
mkdir folder
touch forbidden
chmod 000 forbidden
as_user=()  # root reads everything
if [ "$(id -u)" -eq 0 ]; then
  chmod 755 .
  as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
  "${as_user[@]}" "${talctl[@]}" --version >/dev/null 2>&1 || as_user=(none)
fi
[ "${as_user[*]}" != none ] || printf 'left out: files without permission (nobody may run %s)\n' "${talctl[*]}"

while read -r verb command; do
  for file in /no/such/file folder forbidden /proc/self/mem; do
    [ "$verb $file" != 'written /proc/self/mem' ] || continue
    user=()
    if [ "$file" = forbidden ]; then
      [ "${as_user[*]}" != none ] || continue
      user=("${as_user[@]}")
    fi
    # shellcheck disable=SC2086
    run "${user[@]}" "${talctl[@]}" ${command/FILE/$file} >out
    expect "$command $file" "$status $err$(<out)" "1 error: $file: cannot be $verb"
  done
done <<'END'
read get x --installation FILE
read monitor --log FILE
read config FILE
written monitor --record FILE
END

# ---- readers that go away, and disks that are full ----
mkfifo pipe
printf "9.001 21\n" >lines
exec 3<>pipe 4>pipe 3<&-  # a pipe that nobody reads
unwritable='talctl: standard output cannot be written'
printf '<TalAppHostConfig/>' >config.xml
while read -r command; do
  # shellcheck disable=SC2086
  set -- $command
  run env --default-signal=PIPE "${talctl[@]}" "$@" <lines >&4
  expect "$command | (nobody)" "$status $err" '141 '
  run env --ignore-signal=PIPE "${talctl[@]}" "$@" <lines >&4
  expect "$command | (nobody, SIGPIPE ignored)" "$status $err" '141 '
  run "${talctl[@]}" "$@" <lines >/dev/full
  expect "$command > /dev/full" "$status $err" "1 $unwritable"
done <<'END'
--help
--version
encode 9.001 21
encode
decode 9.001 0C1A
check 9.001 0C1A
dpts
dpts --json
id 1000
demo
demo --lines
get kitchen.light
set kitchen.light on
request {"request":"list"}
register app 1 x
monitor --wait
monitor --wait --json
journey
config config.xml
END

# ---- the manual page ----
if command -v groff >/dev/null; then
  "${talctl[@]}" man | groff -man -Tutf8 -ww >page 2>warnings
  expect 'the manual page' "$(<warnings)$(grep -c 'talctl' page | sed 's/[0-9][0-9]$/many/')" many
fi

# ---- signals ----
# start ARGUMENT...: talctl in the background, once it has written its first line; descriptor 5 is its input.
start() {
  : >out
  "$@" <&5 >out 2>err &
  process=$!
  for ((i = 0; i < 600; i++)); do
    [ ! -s out ] || return
    sleep 0.1
  done
}
# summarised: sets end to the exit status, how many summaries there are, and what was said on standard error.
summarised() {
  wait "$process" 2>/dev/null
  end="$? $(grep -c ' telegrams received: ' out) $(<err)"
}
exec 5</dev/null
monitor=("${talctl[@]}" monitor --wait)
for signal in INT TERM HUP; do
  start timeout --foreground 60 env --default-signal=INT,TERM,HUP sh -c 'echo $$ >pid; exec "$@"' sh "${monitor[@]}"
  kill -STOP "$(<pid)"
  kill -CONT "$(<pid)"
  kill "-$signal" "$(<pid)"
  summarised
  expect "SIG$signal" "$end" '0 1 '
done
start timeout --foreground 60 env --ignore-signal=HUP sh -c 'echo $$ >pid; exec "$@"' sh "${monitor[@]}"
kill -HUP "$(<pid)"
sleep 0.3
expect 'SIGHUP under nohup' "$(grep -c ' telegrams received: ' out)" 0
kill -TERM "$(<pid)"
summarised
expect 'SIGTERM under nohup' "$end" '0 1 '
mkfifo feed
exec 5<>feed
for signal in INT=130 TERM=143 HUP=129; do
  printf '9.001 21\n9.001 2x\n1.001' >&5
  start timeout --foreground 60 env --default-signal=INT,TERM,HUP sh -c 'echo $$ >pid; exec "$@"' sh "${talctl[@]}" encode
  kill "-${signal%=*}" "$(<pid)"
  wait "$process" 2>/dev/null
  end="$? $(sed 's/, [0-9.]* s$//' err) $(head -c 30 out | tr '\n' ' ')"
  expect "$signal while lines are read" "$end" \
    "${signal#*=} talctl: stopped: 2 lines, 1 refused 0C1A error: line 2, column 8: "
done

# ---- terminals ----
# on_terminal ENVIRONMENT COMMAND: what a terminal shows of it, escapes as "^["; a file called out is shown too.
on_terminal() {
  rm -f out
  env TALCTL="$(printf '%q ' "${talctl[@]}")" TERM=xterm $1 timeout 60 script -qec "$2" /dev/null </dev/null 2>&1 |
    cat -v | sed 's/\^D\^H\^H//'
  [ ! -f out ] || cat -v out
}
while IFS='>' read -r environment command painted; do
  command=${command//TO/>}
  expect "$environment $command" "$(on_terminal "$environment" "$command" | grep -c '\^\[')" "$painted"
done <<'END'
>eval "$TALCTL" encode 9.001 x>2
NO_COLOR=1>eval "$TALCTL" encode 9.001 x>0
NO_COLOR=>eval "$TALCTL" encode 9.001 x>2
TERM=dumb>eval "$TALCTL" encode 9.001 x>0
NO_COLOR=1>eval "$TALCTL" --color always encode 9.001 x>2
>eval "$TALCTL" --color never encode 9.001 x>0
>eval "$TALCTL" encode 9.001 x --json>0
>eval "$TALCTL" encode --json --color always <lines TO out>0
>eval "$TALCTL" dpts 9>1
>eval "$TALCTL" dpts 9 TO out>0
>echo 9.001 x | eval "$TALCTL" encode>1
>echo 9.001 x | eval "$TALCTL" encode TO out>0
>eval "$TALCTL" journey>7
END
slow='(cat lines; sleep 1.2; cat lines; sleep 0.5; cat lines) | eval "$TALCTL" encode TO out'
shown=$(on_terminal '' "${slow/TO/>}")
expect 'progress' "$(grep -cE '^2 lines, 0 refused, [0-9]+ lines/s\^M +\^M3 lines, 0 refused, [0-9]+ lines/s\^M +\^M0C1A$' <<<"$shown")" 1
expect 'answers beside progress' "$(tail -n2 <<<"$shown" | tr '\n' ' ')" '0C1A 0C1A '
expect 'progress nobody sees' "$(on_terminal '' "${slow/TO/2>err >}" | tr '\n' ' ')$(<err)" '0C1A 0C1A 0C1A '
expect 'progress among answers' "$(on_terminal '' "${slow/TO*/}" | tr -d '\n')" '0C1A^M0C1A^M0C1A^M'

[ "$failures" -eq 0 ]
