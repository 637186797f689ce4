#!/usr/bin/env bash
# Installs the build tree into an empty prefix and looks at what is there. Faults it is meant to catch: a header, the CMake
# package or the pkg-config file left out of the install; a library without SONAME.
set -euo pipefail
cmake=$1 build=$2 prefix=$3

fail() {
  echo "install_tree: $*" >&2
  exit 1
}

rm -rf -- "$prefix"
"$cmake" --install "$build" --prefix "$prefix" >/dev/null

for pattern in libVelorimRTL.so libVelorimRTL.so.1 VelorimRTLConfig.cmake VelorimRTLConfigVersion.cmake velorimrtl.pc \
  velorim.h LICENSE; do
  [[ -n $(find "$prefix" -name "$pattern" -print -quit) ]] || fail "$pattern was not installed"
done
library=$(find "$prefix" -name 'libVelorimRTL.so' -print -quit)
readelf -d "$library" | grep -q 'SONAME.*\[libVelorimRTL\.so\.1\]' || fail "$library has no SONAME libVelorimRTL.so.1"
if readelf -d "$library" | grep -qE 'RPATH|RUNPATH'; then fail "$library carries the path of a build tree"; fi
pc=$(find "$prefix" -name velorimrtl.pc)
if grep -q -- "$build" "$pc"; then fail "$pc names the build tree"; fi
