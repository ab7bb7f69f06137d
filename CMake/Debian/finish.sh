#!/usr/bin/env bash
# Adds to a package of CPack's what Debian wants besides: finish.sh PACKAGE.deb
# Its change log is the version's section of CHANGELOG.md in Debian's form; SOURCE_DATE_EPOCH, or else the date of that
# section, is that of all files, so that the same sources give the same package.
set -euo pipefail
umask 022
here=$(dirname "$(readlink -f "$0")")
deb=$(readlink -f "$1")
field() { dpkg-deb -f "$deb" "$1"; }
name=$(field Package) version=$(field Version)

section=$(awk -v version="[$version]" '/^## / { if (on) exit; on = $2 == version } on' "$here/../../CHANGELOG.md")
date=$(sed -nE '1s/.* - ([0-9]{4}-[0-9]{2}-[0-9]{2})$/\1/p' <<<"$section")
epoch=$(date -u -d "${date:-none}" +%s 2>/dev/null) && grep -q '^- ' <<<"$section" ||
  { echo "error: CHANGELOG.md has no section '## [$version] - YYYY-MM-DD' with items" >&2; exit 1; }
export SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$epoch}
changelog() {
  printf '%s (%s) unstable; urgency=medium\n\n' "$(field Source)" "$version"
  awk 'function flush() { if (item) print item; item = "" }
    /^- / { flush(); item = substr($0, 3) } /^  / { item = item " " substr($0, 3) } END { flush() }' <<<"$section" |
    while read -r item; do fold -s -w 74 <<<"$item" | sed '1s/^/  * /; 2,$s/^/    /; s/ *$//'; done
  printf '\n -- %s  %s\n' "$(field Maintainer)" "$(LC_ALL=C date -u -R -d "@$SOURCE_DATE_EPOCH")"
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
dpkg-deb -R "$deb" "$work/package"
cd "$work/package"
doc=usr/share/doc/$name
mkdir -p "$doc"
cp "$here/copyright" "$doc/"
rm -f "$doc/LICENSE"  # Debian has it
changelog | gzip -9n >"$doc/changelog.gz"
[ ! -d usr/share/man ] || find usr/share/man -type f ! -name '*.gz' -exec gzip -9n {} +
overrides=$here/${name%%[0-9]*}.lintian-overrides  # without the soname's number
[ ! -f "$overrides" ] || install -D -m 644 "$overrides" "usr/share/lintian/overrides/$name"

# Libraries and headers of two architectures stand side by side; programs and documents of one serve another.
case $name in lib*) multi_arch=same ;; *) multi_arch=foreign ;; esac
rm -f DEBIAN/postinst DEBIAN/postrm  # all they do is what the trigger does
sed -i -e '/^Multi-Arch:/d' -e "/^Description:/i Multi-Arch: $multi_arch" \
  -e "s/^Installed-Size:.*/Installed-Size: $(du -sk --apparent-size --exclude=DEBIAN . | cut -f1)/" DEBIAN/control
find usr -type f -print0 | LC_ALL=C sort -z | xargs -0 md5sum >DEBIAN/md5sums
dpkg-deb --root-owner-group -Zxz --build . "$work/new.deb" >/dev/null
mv "$work/new.deb" "$deb"
