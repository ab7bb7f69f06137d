#!/usr/bin/env bash
# Runs Docs/Tutorial.md in a fresh folder: TutorialTest.sh SOURCE BUILD
# SOURCE is this repository, BUILD a build of it for this machine with everything in it. Files of the page are written,
# commands run one after the other in one shell, and their output must be the page's ("..." stands for anything: in a
# line, or as a line of its own for any lines). A command may fail only where the page shows an error.
# Blocks with a word behind "console" need something. Those that are `long` run when TAL_TUTORIAL=long is set; what they
# would have built is then taken from BUILD. What is left out is named, as NOT RUN.
set -uo pipefail
source=$(readlink -f "$1") build=$(readlink -f "$2")
dir=$(mktemp -d)
trap 'rm -rf --one-file-system "$dir"' EXIT
export HOME=$dir ADDRESS=$source LC_ALL=C
unset DESTDIR PKG_CONFIG_PATH CMAKE_PREFIX_PATH LD_LIBRARY_PATH TAL_ARMHF_SYSROOT
clone=$dir/tutorial/libtalobjectmodel
failures=0 ran=0
cd "$dir" || exit 1

not_run() { printf 'NOT RUN: line %s: %s\n' "$number" "$1"; }

# Says whether a block that needs something can be run; makes what a block that is left out would have made.
is_possible() {
  case $1 in
    '') ;;
    clone)
      git -C "$source" rev-parse HEAD >/dev/null 2>&1 && return
      not_run "clone: $source is no git repository; its files are taken"
      mkdir -p "$clone" && cd "$dir/tutorial" && find "$source" -mindepth 1 -maxdepth 1 ! -name build -exec ln -s {} "$clone" \;
      return 1
      ;;
    long)
      [ "${TAL_TUTORIAL-}" != long ] || return 0
      not_run 'long: takes minutes (TAL_TUTORIAL=long runs it)'
      mkdir -p "$clone/build"
      for preset in dev release; do [ -e "$clone/build/$preset" ] || ln -s "$build" "$clone/build/$preset"; done
      for tree in armhf armhf-sysroot; do
        [ -e "$clone/build/$tree" ] || [ ! -d "$source/build/$tree" ] || ln -s "$source/build/$tree" "$clone/build/$tree"
      done
      return 1
      ;;
    armhf)
      command -v arm-linux-gnueabihf-g++ qemu-arm >/dev/null && [ -x "$clone/build/armhf/bin/talctl" ] &&
        [ -d "$clone/build/armhf-sysroot" ] && return
      not_run 'armhf: no compiler, emulator, sysroot or build (./test armhf makes them)'
      return 1
      ;;
    packages) not_run 'packages: changes this machine (Scripts/try-packages.sh does it in a root of its own)'; return 1 ;;
    device) not_run 'device: there is none here'; return 1 ;;
    *) printf 'line %s: no such need: %s\n' "$number" "$1"; failures=$((failures + 1)); return 1 ;;
  esac
}

# The page's output as a regular expression.
pattern_of() {
  local pattern
  pattern=$(sed -E 's/[][\\.*^$(){}+?|]/\\&/g; s/^\\\.\\\.\\\.$/@ANY@/; s/\\\.\\\.\\\./@SOME@/g' <<<"$1")
  pattern=${pattern//@SOME@/[^$'\n']*}
  pattern=${pattern//$'\n'@ANY@/$'(\n[^\n]*)*'}
  printf '%s' "^${pattern//@ANY@/.*}\$"
}

# Runs a command in this shell, so that folders and variables last, and compares its output.
check() {
  local line=$1 command=$2 expected=$3 actual status pattern
  eval "$command" >"$dir/out" 2>&1 </dev/null
  status=$?
  ran=$((ran + 1))
  actual=$(<"$dir/out")
  pattern=$(pattern_of "$expected")
  if [[ ! $actual =~ $pattern ]] || { [ "$status" -ne 0 ] && [[ $expected != *error:* && $expected != *ERROR* ]]; }; then
    printf 'line %s: $ %s\n--- expected:\n%s\n--- got (status %s):\n%s\n' "$line" "$command" "$expected" "$status" "$actual"
    failures=$((failures + 1))
  fi
}

run_block() {  # lines of $block, the first of which is line $1 of the page
  local line at=$1 start='' command='' expected=''
  for line in "${block[@]}" '$ '; do
    if [ "${line:0:2}" = '$ ' ]; then
      [ -z "$command" ] || check "$start" "$command" "${expected%$'\n'}"
      command=${line:2} start=$at expected=''
    else
      expected+=$line$'\n'
    fi
    at=$((at + 1))
  done
}

number=0 kind=''
block=()
exec 3<"$source/Docs/Tutorial.md"
while IFS= read -r text <&3; do
  number=$((number + 1))
  if [ -z "$kind" ]; then
    read -r kind word <<<"${text#\`\`\`}"
    [ "${text:0:3}" = '```' ] || kind=''
    first=$((number + 1))
    block=()
  elif [ "$text" != '```' ]; then
    block+=("$text")
  else
    if [ "$kind" = console ]; then
      is_possible "$word" && run_block "$first"
    else
      mkdir -p "$(dirname "$word")" && printf '%s\n' "${block[@]}" >"$word"
    fi
    kind=''
  fi
done
printf '%s commands run, %s failed\n' "$ran" "$failures"
cd /
[ "$failures" -eq 0 ] && [ "$ran" -gt 20 ]
