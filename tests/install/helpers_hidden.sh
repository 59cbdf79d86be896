#!/usr/bin/env bash
# Builds the library a second time with its helpers hidden; the published interface alone remains.
#
# usage: helpers_hidden.sh SOURCE_DIR SCRATCH_DIR CMAKE [CMAKE_OPTION...]
set -euo pipefail
source=$1 scratch=$2 cmake=$3
options=("${@:4}")

"$cmake" -S "$source" -B "$scratch" "${options[@]}" -DZEVOCI_EXPORT_HELPERS=OFF \
  -DZEVOCI_BUILD_TESTS=OFF -DZEVOCI_BUILD_EXAMPLES=OFF -DZEVOCI_BUILD_BENCH=OFF > /dev/null
"$cmake" --build "$scratch" --target zevoci --parallel 2 > "$scratch/build.log" ||
  { tail -40 "$scratch/build.log" >&2; exit 1; }
"$source/tests/install/symbols.sh" "$scratch/libzevoci.so" "$scratch/published.exports"
