#!/bin/sh
# Runs a 32-bit ARM program under emulation: TAL_ARMHF_SYSROOT=FOLDER run.sh PROGRAM [ARGUMENT...]
# Programs see this script as their own name, so that death tests, which start their program anew, come back here; the
# program proper is passed on in the environment.
: "${TAL_ARMHF_SYSROOT:?is not set}"
self=$(readlink -f "$0")
if [ -n "${TAL_ARMHF_PROGRAM:-}" ]; then
  program=$TAL_ARMHF_PROGRAM
else
  program=$(readlink -f "$1")
  shift
fi
export TAL_ARMHF_PROGRAM="$program"
exec qemu-arm -L "$TAL_ARMHF_SYSROOT" -0 "$self" "$program" "$@"
