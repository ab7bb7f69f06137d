#!/usr/bin/env bash
# Makes a folder with what 32-bit ARM programs of this project build and run with: make-sysroot.sh FOLDER
# Needs apt-get and dpkg-deb, no root; the machine's own packages and lists are not touched. The mirror is the machine's,
# or MIRROR from the environment.
set -euo pipefail
die() { printf 'error: %s\n' "$*" >&2; exit 1; }

[ "${1-}" != --help ] || { sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$0"; exit 0; }
[ $# -eq 1 ] || die "expected FOLDER"
target=$(realpath -m -- "$1")
[ ! -e "$target" ] || [ -d "$target/usr/lib/arm-linux-gnueabihf" ] || [ -z "$(ls -A "$target")" ] ||
  die "$target holds something else: expected a new folder, or an older one of this script"
release=bookworm
packages=(libc6-dev libstdc++-12-dev libboost-{thread,chrono,date-time,timer,system}1.74-dev liblog4cplus-dev
  librapidxml-dev libutfcpp-dev libcli11-dev nlohmann-json3-dev libgtest-dev libgmock-dev libubsan1)
for tool in apt-get dpkg-deb; do command -v "$tool" >/dev/null || die "$tool is missing: this needs a Debian machine"; done

mirror=${MIRROR:-$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 2>/dev/null |
  grep -m1 -E '/debian/?$' || true)}
[ -n "$mirror" ] || die "no Debian mirror in the machine's package sources: set MIRROR"

# A package manager that knows nothing but that mirror, and that nothing is installed.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work"/etc/{apt.conf.d,preferences.d,sources.list.d} "$work"/state/lists/partial "$work"/cache/archives/partial
: >"$work/state/status"
keyring=/usr/share/keyrings/debian-archive-keyring.gpg
echo "deb [arch=armhf signed-by=$keyring] $mirror $release main" >"$work/etc/sources.list"
cat >"$work/apt.conf" <<CONF
Dir::Etc "$work/etc"; Dir::Etc::parts "$work/etc/apt.conf.d"; Dir::State "$work/state";
Dir::State::status "$work/state/status"; Dir::Cache "$work/cache"; Dir::Log "$work";
APT::Architecture "armhf"; APT::Architectures { "armhf"; }; APT::Install-Recommends "false"; APT::Sandbox::User "";
APT::Keep-Downloaded-Packages "true"; Acquire::Languages "none"; Debug::NoLocking "true";
CONF
export APT_CONFIG=$work/apt.conf
{ apt-get -qq update && apt-get -qq -y --download-only install "${packages[@]}"; } >"$work/log" 2>&1 ||
  die "cannot get the packages from $mirror: $(grep -m1 '^E: ' "$work/log" || tail -n1 "$work/log")"

rm -rf --one-file-system "$target.new" "$target"
mkdir -p "$target.new/usr/lib"
ln -s usr/lib "$target.new/lib"
for package in "$work"/cache/archives/*.deb; do
  # Only what programs are built and run with: a path that is there hides the machine's own under emulation.
  dpkg-deb --fsys-tarfile "$package" | tar -x -C "$target.new" --keep-directory-symlink --no-same-owner \
    --exclude='./etc' --exclude='./var' --exclude='./bin' --exclude='./sbin' --exclude='./usr/bin' \
    --exclude='./usr/sbin' --exclude='./usr/share/doc' --exclude='./usr/share/man' --exclude='./usr/share/locale'
  # Which package has which library: a package made here takes its dependencies from it.
  dpkg-deb --ctrl-tarfile "$package" | tar -xO ./shlibs 2>/dev/null >>"$target.new/shlibs.local" || true
done
cd "$target.new"
find . -type l -lname '/*' | while read -r link; do  # absolute links would leave the folder
  ln -sfn "$(realpath -ms --relative-to="$(dirname "$link")" ".$(readlink "$link")")" "$link"
done
# A package's description that names a library by its place on the device.
find usr/lib -name '*.cmake' -exec sed -i 's#/usr/lib/arm-linux-gnueabihf/lib\([a-z]*\)\.\(a\|so\)#\1#g' {} +
cd /
mv "$target.new" "$target"
