#!/usr/bin/env bash
# The example of CONTRIBUTING.md can be applied to the sources as they are: ContributingTest.sh ROOT
set -euo pipefail
cd "$1"
change=$(sed -n '/^```diff$/,/^```$/{/^```/d;p}' CONTRIBUTING.md)
[ "$(grep -c '^+++ b/' <<<"$change")" -eq 2 ] || { echo "the example is not there"; exit 1; }
applies() { patch --dry-run --batch --fuzz=0 -p1 "$1" <<<"$change"; }
applies --forward || applies --reverse  # or it has been
