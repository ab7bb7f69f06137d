#!/usr/bin/env bash
# The page of datapoint types in a browser: PageTest.sh TALCTL... [--screenshots FOLDER]
# TALCTL is the command that runs talctl. With --screenshots pictures of the page are left in FOLDER to be looked at.
# Exit status: 0 all is well, 1 something is not, 77 no browser is installed.
set -euo pipefail

talctl=()
pictures=
while [ $# -gt 0 ]; do
  case $1 in
    --screenshots) pictures=$(mkdir -p "$2" && cd "$2" && pwd); shift ;;
    *) talctl+=("$1") ;;
  esac
  shift
done
browser=
for candidate in chromium chromium-browser google-chrome; do
  [ -n "$browser" ] || browser=$(command -v "$candidate" || true)
done
[ -n "$browser" ] || { echo "NOT RUN: no browser is installed (apt-get install chromium)"; exit 77; }

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
page=$scratch/page.html
"${talctl[@]}" dpts --html "$page"
failed=0
fail() { echo "FAILED: $*"; failed=1; }

# Nothing is fetched: no address but the namespace-free page itself.
if grep -nEi 'https?:|src=|href=|url\(|@import' "$page"; then fail "the page asks for something outside of it"; fi

in_browser() {
  timeout 60 "$browser" --headless=new --no-sandbox --disable-gpu --disable-quic --no-first-run --disable-sync \
    --disable-background-networking --disable-component-update --user-data-dir="$scratch/profile" "$@" 2>/dev/null
}

# found SEARCH: the datapoint types that are left, in a line.
found() {
  in_browser --dump-dom "file://$page#$1" >"$scratch/dom.html"
  tr '\n' ' ' <"$scratch/dom.html" | sed 's/<tbody/\n<tbody/g' | grep '^<tbody data-find="[^"]*">' |
    sed -E 's/.*<td class="dpt"[^>]*>([^<]*)<.*/\1/' | paste -sd' '
}

expect() {
  local search=$1 expected=$2 actual
  actual=$(found "$search" || true)
  [ "$actual" = "$expected" ] || fail "a search for '$search' leaves '$actual', expected '$expected'"
}
expect temperature "9.001 9.002 9.003 9.023 9.027"
expect "TEMPERATURE+%C2%B0C" "9.001"
expect dpst-20-102 "20.102"
expect "temperature%20%C2%B0F" "9.027"
expect "K/%" "9.023"
expect "no%20such%20thing" ""
grep -q '>nothing found<' "$scratch/dom.html" || fail "an empty result is not said"

if [ -n "$pictures" ]; then
  for width in 1280 400; do
    for light in 1:light 0:dark; do
      in_browser --blink-settings=preferredColorScheme="${light%%:*}" --window-size="$width",1600 --hide-scrollbars \
        --screenshot="$pictures/$width-${light##*:}.png" "file://$page"
    done
    in_browser --window-size="$width",900 --screenshot="$pictures/$width-search.png" "file://$page#temperature"
  done
  # The layouts opened.
  sed 's/<details>/<details open>/' "$page" >"$scratch/open.html"
  in_browser --window-size=1280,1600 --screenshot="$pictures/1280-open.png" "file://$scratch/open.html#9.0"
  in_browser --window-size=400,1600 --screenshot="$pictures/400-open.png" "file://$scratch/open.html#19."
fi
exit $failed
