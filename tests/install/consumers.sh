#!/usr/bin/env bash
# Builds and runs a C99 and a C++20 program against the installed tree, through pkg-config and
# through the CMake package.
#
# usage: consumers.sh pkg-config|cmake SOURCE_DIR SCRATCH_DIR CMAKE LIBDIR CC CXX [FLAG...]
set -euo pipefail
how=$1 source=$2 scratch=$3 cmake=$4 libdir=$5 cc=$6 cxx=$7
flags=("${@:8}")
prefix=$scratch/moved
work=$scratch/$how

fail() { echo "FAILED: $*" >&2; exit 1; }

rm -rf "$work"
mkdir -p "$work"
case $how in
  pkg-config)
    export PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig
    read -ra use <<< "$(pkg-config --cflags --libs zevoci)"
    [ "$(pkg-config --modversion zevoci)" = 11.0.1 ] || fail "version of zevoci.pc"
    [ "$(pkg-config --print-requires-private zevoci)" = libpq ] || fail "private requirements"
    "$cc" -std=c99 -pedantic -Wall -Wextra -Werror "${flags[@]}" \
      "$source/consumer.c" -o "$work/consumer_c" "${use[@]}"
    "$cxx" -std=c++20 -pedantic -Wall -Wextra -Werror "${flags[@]}" \
      "$source/consumer.cpp" -o "$work/consumer_cpp" "${use[@]}"
    export LD_LIBRARY_PATH=$prefix/$libdir
    ;;
  cmake)
    "$cmake" -S "$source" -B "$work" -DCMAKE_PREFIX_PATH="$prefix" \
      -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" \
      -DCMAKE_C_FLAGS="${flags[*]}" -DCMAKE_CXX_FLAGS="${flags[*]}" > "$work.log"
    grep -q "^zevoci_DIR:PATH=$prefix/" "$work/CMakeCache.txt" || fail "found another package"
    "$cmake" --build "$work" >> "$work.log" || { cat "$work.log"; fail "building"; }
    ;;
esac

for program in consumer_c consumer_cpp; do
  loads=$(ldd "$work/$program")
  grep -qF "$prefix/$libdir/libzevoci.so.11" <<< "$loads" ||
    fail "$program does not load the installed library"
  said=$("$work/$program") || fail "$program ended with $?"
  [ "$said" = 11.0.1.1.0 ] || fail "$program said: $said"
done
echo "C99 and C++20 programs run against the installed tree ($how)"
