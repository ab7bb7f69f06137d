#!/usr/bin/env bash
# Writes the pages of Docs/ that are made from the library's tables: Scripts/pages.sh
# A test compares them with what the library says.
# Exit status: 0 done, 1 something failed, 2 wrong use.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
source "$root/Scripts/setup.sh"

answer_help "$@"
[ $# -eq 0 ] || wrong_use "expected no arguments"
"$root/run" dpts --markdown "$root/Docs/Datapoints.md"
"$root/run" id --markdown "$root/Docs/Identifiers.md"
say "written: Docs/Datapoints.md, Docs/Identifiers.md"
