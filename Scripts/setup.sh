# Set-up and build for ./run and ./test; sourced by bash with $root set. Everything is said on standard error, so that
# standard output stays with what is run.

say() { printf '%s\n' "$*" >&2; }
die() { say "error: $*"; exit 1; }

# The comment at the head of the script that runs is its help.
usage_from_head() { sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$0"; }
answer_help() { [ "${1-}" != --help ] || { usage_from_head; exit 0; }; }
wrong_use() { say "error: $*"; usage_from_head >&2; exit 2; }

build_packages=(build-essential cmake ninja-build libboost-date-time-dev libboost-timer-dev libboost-chrono-dev
  libboost-system-dev libboost-thread-dev liblog4cplus-dev librapidxml-dev libutfcpp-dev libcli11-dev nlohmann-json3-dev)
test_packages=(libgtest-dev libgmock-dev locales pkg-config tzdata)

# One set-up or build at a time: others wait for it. The lock ends with unlock, or with the process.
lock() {
  # A read-only tree that is built will do.
  mkdir -p "$root/build" 2>/dev/null && { exec 9>>"$root/build/.lock"; } 2>/dev/null || return 0
  flock -n 9 || { say "waiting for another set-up or build in $root"; flock 9; }
}
unlock() { exec 9>&-; }

# Says whether a package is installed for this machine's architecture.
is_installed() {
  dpkg-query -W -f='${Architecture} ${db:Status-Status}\n' "$1" 2>/dev/null |
    grep -qxE "(all|$(dpkg --print-architecture)) installed"
}

# Installs those of the named packages that are missing, and says so; fails with one line when one cannot be had.
need_packages() {
  command -v dpkg-query >/dev/null || { say "no Debian packages here: taking for granted that these are there: $*"; return; }
  local missing=() package
  for package in "$@"; do
    is_installed "$package" || missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0

  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || die "packages are missing; as root, run: apt-get install ${missing[*]}"
    as_root=(sudo)
  fi
  mkdir -p "$root/build" || die "cannot write to $root/build"
  local log=$root/build/setup.log
  local apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -y)
  say "installing packages: ${missing[*]}"
  "${apt[@]}" install --no-install-recommends "${missing[@]}" >"$log" 2>&1 </dev/null && return
  { "${apt[@]}" update && "${apt[@]}" install --no-install-recommends "${missing[@]}"; } >"$log" 2>&1 </dev/null && return
  local reason
  reason=$(grep -m1 '^E: ' "$log" || tail -n1 "$log")
  die "cannot install the packages ${missing[*]}: ${reason:-apt-get failed} (all of it: $log)"
}

# Configures a preset where that is needed: configure_preset PRESET [OPTION...], each option one that is to be ON.
configure_preset() {
  local preset=$1 tree=$root/build/$1 fresh=() is_done=yes option
  shift
  if [ -f "$tree/CMakeCache.txt" ] && ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$tree/CMakeCache.txt"; then
    fresh=(--fresh)  # the tree was copied or moved
    is_done=
  fi
  [ -f "$tree/build.ninja" ] || is_done=
  for option in "$@"; do
    grep -qx "$option:BOOL=ON" "$tree/CMakeCache.txt" 2>/dev/null || is_done=
  done
  [ ! "$is_done" ] || return 0
  say "configuring build/$preset"
  set -- "${@/#/-D}"
  (cd "$root" && cmake "${fresh[@]}" --preset "$preset" "${@/%/=ON}") >&2 || die "cannot configure the preset '$preset'"
}

# Configures and builds a preset, or only the named targets of it; silent when there is nothing to do.
build_preset() {
  local preset=$1 tree=$root/build/$1
  shift
  configure_preset "$preset"
  ninja -C "$tree" -n "$@" 2>/dev/null | grep -q 'no work to do' && return
  say "building build/$preset"
  (cd "$root" && cmake --build --preset "$preset" ${1+--target "$@"}) >&2 || die "cannot build the preset '$preset'"
}
