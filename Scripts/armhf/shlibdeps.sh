#!/bin/sh
# dpkg-shlibdeps for packages of 32-bit ARM, as CPack calls it: libraries and the names of their packages are those of
# the folder TAL_ARMHF_SYSROOT.
case " $* " in *" --version "* | *" --help "*) exec dpkg-shlibdeps "$@" ;; esac
: "${TAL_ARMHF_SYSROOT:?is not set}"
exec dpkg-shlibdeps "-L$TAL_ARMHF_SYSROOT/shlibs.local" "-l$TAL_ARMHF_SYSROOT/usr/lib/arm-linux-gnueabihf" "$@"
