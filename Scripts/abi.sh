#!/usr/bin/env bash
# Compares the binary interface of the shared libraries with the one in Interface/, or accepts the new one:
#   Scripts/abi.sh check|accept [PRESET...]
# Presets: dev (the default; this machine's architecture) and armhf. Builds what it needs.
# Exit status: 0 no change, 1 changed or failed, 2 wrong use.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
source "$root/Scripts/setup.sh"
export LC_ALL=C
interface=$root/Interface

usage() { say "error: $*"; say "usage: Scripts/abi.sh check|accept [PRESET...]  (presets: dev, armhf)"; exit 2; }
[ $# -gt 0 ] || usage "nothing to do"
action=$1
shift
case $action in check | accept) ;; *) usage "expected check or accept, not '$action'" ;; esac
[ $# -gt 0 ] || set -- dev
packages=("${build_packages[@]}" "${test_packages[@]}" abigail-tools)
for preset in "$@"; do
  case $preset in
    dev) ;;
    armhf) packages+=(g++-arm-linux-gnueabihf qemu-user) ;;
    *) usage "no interface is kept for the preset '$preset': expected dev or armhf" ;;
  esac
done

architecture() {
  case $1 in
    armhf) echo armhf ;;
    *) dpkg --print-architecture 2>/dev/null || uname -m ;;
  esac
}

# What a library shows, without the standard library's and Boost's own types, parameter names and places.
describe() {
  abidw --suppressions "$interface/PublicTypes.ini" --exported-interfaces-only --no-corpus-path --no-comp-dir-path \
    --no-show-locs --no-parameter-names --type-id-style hash --out-file "$2" "$1" || die "abidw cannot read $1"
}
names() { nm -DC --defined-only "$1" | sed -E 's/^[0-9a-f]+ [A-Za-z] //' | sort -u; }

# A list of names is shared by all architectures; a name that only some have stands with each of them before it.
names_of() { sed -nE "/^[a-z0-9_]+: /! p; s/^$1: //p" "$2" | sort -u; }
merge_names() {  # merge_names ARCHITECTURE NEW FILE: FILE with the names of that architecture replaced
  local arch=$1 new=$2 file=$3 kept other work
  work=$(mktemp -d)
  for kept in "$interface"/*/"$(basename "$file" .symbols).abi"; do
    other=$(basename "$(dirname "$kept")")
    names_of "$other" "$file" >"$work/$other"
  done
  cp "$new" "$work/$arch"
  awk '{ count[$0]++; where[$0] = where[$0] " " name() }
    function name() { n = FILENAME; sub(/.*\//, "", n); return n }
    END { for (s in count) if (count[s] == ARGC - 1) print s; else { k = split(where[s], w, " ");
      for (i = 1; i <= k; i++) print w[i] ": " s } }' "$work"/* | sort >"$file.new"
  mv "$file.new" "$file"
  rm -rf "$work"
}

# Says what differs between the kept interface and the built one; fails when anything does.
compare() {  # compare NAME ARCHITECTURE FOLDER-WITH-NEW
  local name=$1 arch=$2 new=$3/$1 old=$interface/$2/$1.abi status=0 verdict
  if [ ! -f "$old" ]; then
    say "$name ($arch): new, no interface is kept"
    return 1
  fi
  if [ ! -f "$new.abi" ]; then
    say "$name ($arch): the library is gone, INCOMPATIBLE"
    return 1
  fi
  names_of "$arch" "$interface/$name.symbols" >"$new.kept"
  diff "$new.kept" "$new.symbols" >"$new.names" || status=1
  abidiff "$old" "$new.abi" >"$new.report" 2>&1 || status=$((status | $?))
  [ $((status & 3)) -lt 2 ] && [ -s "$new.symbols" ] || { cat "$new.report" >&2; die "abidiff cannot compare $name"; }
  [ "$status" -ne 0 ] || return 0
  if grep -q '^<' "$new.names"; then
    verdict="INCOMPATIBLE: names are gone; programs that use them no longer start"
  elif [ $((status & 8)) -ne 0 ]; then
    verdict="INCOMPATIBLE: programs built before no longer fit"
  elif abidiff --no-added-syms "$old" "$new.abi" >/dev/null 2>&1; then
    verdict="compatible: only additions; programs built before still work"
  else
    verdict="types have CHANGED: unless the report below shows it harmless, programs built before no longer fit"
  fi
  say "$name ($arch): $verdict"
  sed -nE 's/^< /  removed  /p; s/^> /  added    /p' "$new.names" >&2
  [ ! -s "$new.report" ] || sed 's/^/  | /' "$new.report" >&2
  return 1
}

lock
need_packages "${packages[@]}"
changed=()
for preset in "$@"; do
  arch=$(architecture "$preset")
  tree=$root/build/$preset
  build_preset "$preset" TalObjectModel
  rm -rf "$tree/Interface"
  mkdir -p "$tree/Interface" "$interface/$arch"
  for library in "$tree"/lib/lib*.so; do
    name=$(basename "$library" .so)
    describe "$library" "$tree/Interface/$name.abi"
    names "$library" >"$tree/Interface/$name.symbols"
  done
  same=true
  for name in $({ ls "$interface/$arch"; ls "$tree/Interface"; } | sed -n 's/\.abi$//p' | sort -u); do
    compare "$name" "$arch" "$tree/Interface" || same=false
  done
  if $same; then
    say "the interface is unchanged ($arch)"
  elif [ "$action" = check ]; then
    changed+=("$preset")
  else
    rm -f "$interface/$arch"/*.abi
    for file in "$tree"/Interface/*.abi; do
      name=$(basename "$file" .abi)
      cp "$file" "$interface/$arch/"
      [ -f "$interface/$name.symbols" ] || : >"$interface/$name.symbols"
      merge_names "$arch" "$tree/Interface/$name.symbols" "$interface/$name.symbols"
    done
    for file in "$interface"/*.symbols; do
      name=$(basename "$file" .symbols)
      compgen -G "$interface/*/$name.abi" >/dev/null || rm "$file"
    done
    say "accepted: Interface/ describes what is built ($arch); commit it with the change"
  fi
done
[ ${#changed[@]} -eq 0 ] || {
  say "When this is intended: Scripts/abi.sh accept ${changed[*]}"
  exit 1
}
