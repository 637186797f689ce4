#!/usr/bin/env bash
# Builds the weather example against an installed tree and runs it on its data.
#   build_example.sh find_package|pkg_config|plain c11|cxx20 PREFIX WORK_DIR EXAMPLES_DIR
# Environment: CMAKE, CC, CXX, PYTHON, LIBDIR (below the prefix), SANITIZE (compiler option or empty).
# Faults it is meant to catch: a public header that is not C11 or not C++, or leans on a header that is not installed; a
# package or pkg-config file with wrong paths; a needed name that is not exported.
set -euo pipefail
road=$1 language=$2 prefix=$3 work=$4 examples=$5
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

rm -rf -- "$work"
mkdir -p -- "$work"
program=$work/weather

if [[ $language == c11 ]]; then
  compile=("$CC" -std=c11)
else
  compile=("$CXX" -x c++ -std=c++20)
fi
compile+=(-Wall -Wextra -Wshadow -Wpedantic -Werror -O1)
[[ -n $SANITIZE ]] && compile+=("$SANITIZE")
sources=("$examples"/weather/*.c)

case $road in
  find_package)
    as_cxx=OFF
    [[ $language == cxx20 ]] && as_cxx=ON
    "$CMAKE" -S "$examples/weather" -B "$work" -DCMAKE_PREFIX_PATH="$prefix" -DWEATHER_AS_CXX=$as_cxx \
      -DCMAKE_C_COMPILER="$CC" -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_C_FLAGS="$SANITIZE" -DCMAKE_CXX_FLAGS="$SANITIZE" \
      >"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
    "$CMAKE" --build "$work" >>"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
    ;;
  pkg_config)
    export PKG_CONFIG_PATH=$prefix/$LIBDIR/pkgconfig
    read -ra cflags <<<"$(pkg-config --cflags velorimrtl)"
    read -ra libs <<<"$(pkg-config --libs velorimrtl)"
    "${compile[@]}" "${cflags[@]}" "${sources[@]}" -x none "${libs[@]}" -o "$program"
    ;;
  plain)
    "${compile[@]}" -I"$prefix/include" "${sources[@]}" -x none -L"$prefix/$LIBDIR" -lVelorimRTL -o "$program"
    ;;
  *)
    echo "build_example: no road called $road" >&2
    exit 2
    ;;
esac

LD_LIBRARY_PATH=$prefix/$LIBDIR "$PYTHON" "$here/check_report.py" "$program" "$examples/data/seattle-weather.csv"
