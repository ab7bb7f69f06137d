#!/usr/bin/env bash
# Compares the binary interface of the shared libraries with the one in abi/, or accepts the new one:
#   Scripts/abi.sh check|accept [PRESET...]
# Presets: dev (the default; this machine's architecture) and armhf. Builds what it needs.
# Exit status: 0 no change, 1 changed or failed, 2 wrong use.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
source "$root/Scripts/setup.sh"
export LC_ALL=C
interface=$root/abi

answer_help "$@"
[ $# -gt 0 ] || wrong_use "nothing to do"
action=$1
shift
case $action in check | accept) ;; *) wrong_use "expected check or accept, not '$action'" ;; esac
[ $# -gt 0 ] || set -- dev
packages=("${build_packages[@]}" "${test_packages[@]}" abigail-tools)
for preset in "$@"; do
  case $preset in
    dev) ;;
    armhf) packages+=(g++-arm-linux-gnueabihf qemu-user) ;;
    *) wrong_use "no interface is kept for the preset '$preset': expected dev or armhf" ;;
  esac
done

architecture() {
  case $1 in
    armhf) echo armhf ;;
    *) dpkg --print-architecture 2>/dev/null || uname -m ;;
  esac
}

# What abidw keeps of types: those of the public headers in full, all others by name alone. The label is abidw's own, for
# types that are to become opaque; without it members of such types would be left out.
write_type_rules() {
  printf '%s\n' '[suppress_type]' "  label = Artificial private types suppression spec"ification \
    '  source_location_not_regexp = ^(Include|Platform/[^/]*/Include)/' '  drop = yes' >"$1"
}

# What a library shows, without the standard library's and Boost's own types, parameter names and places.
describe() {
  abidw --suppressions "$built/types.ini" --exported-interfaces-only --no-corpus-path --no-comp-dir-path \
    --no-show-locs --no-parameter-names --type-id-style hash --out-file "$2" "$1" || die "abidw cannot read $1"
  is_whole "$2" || die "abidw does not describe all of $1"
}
names() {
  nm -DC --defined-only "$1" | sed -E 's/^[0-9a-f]+ [A-Za-z] //' | sort -u >"$2"
  [ -s "$2" ] || die "nm finds no names in $1"
}

# Sizes of the public types. abidiff does not look at types that are reached through another library's templates only.
sizes() { sed -nE "s/.*<class-decl name='([^']*)' size-in-bits='([0-9]+)'.*/\1 has \2 bits/p" "$1" | sort -u; }

is_whole() { [ "$(tail -n1 "$1")" = '</abi-corpus>' ]; }

# abidiff's report, and its status: bits 4 and 8 for changes. It may end with 0 over a file that it cannot read, but says
# so on standard error; a report with status 0 is of harmless changes.
difference() {  # difference OLD NEW REPORT
  local status=0
  is_whole "$1" || return 1
  abidiff "$1" "$2" >"$3" 2>"$3.errors" || status=$?
  [ ! -s "$3.errors" ] || return 1
  if diff <(sizes "$1") <(sizes "$2") >"$3.sizes"; then return "$status"; fi
  sed -nE 's/^< (.*)/size changed from: \1/p; s/^> (.*)/  to: \1/p' "$3.sizes" >>"$3"
  status=$((status | 4))
  ! grep -q '^<' "$3.sizes" || status=$((status | 8))
  return "$status"
}

# A list of names is shared by all architectures; a name that only some have stands with each of them before it.
names_of() {  # names_of ARCHITECTURE NAME
  [ ! -f "$interface/$2.symbols" ] || sed -nE "/^[a-z0-9_-]+: /! p; s/^$1: //p" "$interface/$2.symbols" | sort -u
}
merge_names() {  # merge_names FILE...: all names of the files, each of which bears the name of its architecture
  awk '{ count[$0]++; where[$0] = where[$0] " " name() }
    function name() { n = FILENAME; sub(/.*\//, "", n); return n }
    END { for (s in count) if (count[s] == ARGC - 1) print s; else { k = split(where[s], w, " ");
      for (i = 1; i <= k; i++) print w[i] ": " s } }' "$@" | sort
}

# Says what differs between the kept interface and the built one; fails when anything does.
compare() {  # compare NAME ARCHITECTURE FOLDER-WITH-NEW
  local name=$1 arch=$2 new=$3/$1 old=$interface/$2/$1.abi status=0 are_names_same=yes verdict
  if [ ! -f "$old" ]; then
    say "$name ($arch): new, no interface is kept"
    return 1
  fi
  if [ ! -f "$new.abi" ]; then
    say "$name ($arch): the library is gone, INCOMPATIBLE"
    return 1
  fi
  names_of "$arch" "$name" >"$new.kept"
  diff "$new.kept" "$new.symbols" >"$new.names" || are_names_same=
  difference "$old" "$new.abi" "$new.report" || status=$?
  [ $((status & 3)) -eq 0 ] || {
    [ ! -s "$new.report.errors" ] || cat "$new.report.errors" >&2
    die "cannot read abi/$arch/$name.abi; Scripts/abi.sh accept writes it anew"
  }
  [ "$status" -ne 0 ] || [ ! "$are_names_same" ] || return 0
  if grep -q '^<' "$new.names"; then
    verdict="INCOMPATIBLE: names are gone; programs that use them no longer start"
  elif [ $((status & 8)) -ne 0 ] || grep -qE 'size changed from|offset changed' "$new.report"; then
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

# Writes what differs to abi/; first all of it beside, so that nothing is half written.
accept() {  # accept ARCHITECTURE... with what is built in $built
  local arch file name next kept=() gone=()
  next=$(mktemp -d "$interface/.accept.XXXXXX")
  trap "rm -rf ${next@Q}" EXIT
  cd "$interface"
  # The descriptions, as far as abidiff sees a difference.
  for arch in "$@"; do
    mkdir "$next/$arch"
    for file in "$built/$arch"/*.abi; do
      name=$arch/$(basename "$file")
      [ -f "$name" ] && difference "$name" "$file" "${file%.abi}.report" || cp "$file" "$next/$name"
    done
    for file in "$arch"/*.abi; do
      [ ! -f "$file" ] || [ -f "$built/$file" ] || gone+=("$file")
    done
  done
  # The names, of the built architectures and the others.
  for name in $({ ls ./*.symbols */*.abi; ls "$built"/*/*.abi; } 2>/dev/null | sed -E 's|.*/||; s|[.][a-z]+$||' | sort -u); do
    mkdir "$next/names"
    for arch in */; do
      arch=${arch%/}
      [ -d "$next/$arch" ] || [ ! -f "$arch/$name.abi" ] || names_of "$arch" "$name" >"$next/names/$arch"
    done
    for arch in "$@"; do
      [ ! -f "$built/$arch/$name.abi" ] || cp "$built/$arch/$name.symbols" "$next/names/$arch"
    done
    kept=("$next/names"/*)
    if [ -f "${kept[0]}" ]; then
      merge_names "${kept[@]}" >"$next/$name.symbols"
      ! cmp -s "$next/$name.symbols" "$name.symbols" || rm "$next/$name.symbols"
    else
      gone+=("$name.symbols")
    fi
    rm -r "$next/names"
  done

  mapfile -d '' -t kept < <(cd "$next" && find . -type f -printf '%P\0' | sort -z)
  for file in "${kept[@]}"; do
    mkdir -p "$(dirname "$file")"
    mv "$next/$file" "$file"
    say "  written  abi/$file"
  done
  for file in "${gone[@]}"; do
    rm "$file"
    say "  removed  abi/$file"
  done
  if [ ${#kept[@]} -eq 0 ] && [ ${#gone[@]} -eq 0 ]; then
    say "the interface is unchanged ($*)"
  else
    say "accepted: abi/ describes what is built ($*); commit it with the change"
  fi
}

lock
need_packages "${packages[@]}"
built=$root/build/interface
rm -rf "$built"
mkdir -p "$built"
write_type_rules "$built/types.ini"
architectures=()
for preset in "$@"; do
  arch=$(architecture "$preset")
  build_preset "$preset" TalObjectModel
  [ ! -d "$built/$arch" ] || continue
  architectures+=("$arch")
  mkdir -p "$built/$arch"
  for library in "$root/build/$preset"/lib/lib*.so; do
    name=$(basename "$library" .so)
    describe "$library" "$built/$arch/$name.abi"
    names "$library" "$built/$arch/$name.symbols"
  done
done
if [ "$action" = accept ]; then
  accept "${architectures[@]}"
  exit
fi

is_same=yes
for arch in "${architectures[@]}"; do
  is_arch_same=yes
  for name in $({ ls "$interface/$arch" 2>/dev/null; ls "$built/$arch"; } | sed -n 's/\.abi$//p' | sort -u); do
    compare "$name" "$arch" "$built/$arch" || is_arch_same=
  done
  if [ "$is_arch_same" ]; then
    say "the interface is unchanged ($arch)"
  else
    is_same=
  fi
done
[ "$is_same" ] || {
  say "When this is intended: Scripts/abi.sh accept $*"
  exit 1
}
