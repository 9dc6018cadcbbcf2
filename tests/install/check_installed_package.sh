#!/usr/bin/env bash
# Installs the built library into a scratch prefix and builds a small host
# program against it twice: through the CMake package and through pkg-config.
set -euo pipefail
build_dir=$1
consumer_dir=$2
work=$3

rm -rf "$work"
mkdir -p "$work"
prefix="$work/prefix"
cmake --install "$build_dir" --prefix "$prefix" >/dev/null

for file in include/aimhue/aimhue.h lib/cmake/aimhue/aimhueConfig.cmake \
            lib/pkgconfig/aimhue.pc; do
  [ -f "$prefix/$file" ] || { echo "not installed: $file"; exit 1; }
done
ls "$prefix"/lib/libaimhue.so.* >/dev/null

cmake -S "$consumer_dir" -B "$work/cmake-build" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/cmake-build" >/dev/null
LD_LIBRARY_PATH="$prefix/lib" "$work/cmake-build/consumer"

export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
# shellcheck disable=SC2046
c++ -std=c++17 "$consumer_dir/consumer.cpp" -o "$work/consumer-pkgconfig" \
  $(pkg-config --cflags --libs aimhue)
LD_LIBRARY_PATH="$prefix/lib" "$work/consumer-pkgconfig"
