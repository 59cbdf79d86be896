#!/usr/bin/env bash
# Compiles each public header alone, in every language that programs use it from, all of them
# together, and the facts of the published interface against them.
#
# usage: headers.sh SOURCE_DIR BUILD_DIR CC CXX
set -euo pipefail
here=$1/tests/install cc=$3 cxx=$4
include=("$1/include" "$2/include")
warnings=(-pedantic -Wall -Wextra -Wshadow -Werror -fsyntax-only "${include[@]/#/-I}")

failed=0
alone() {  # HEADER COMPILER...: one translation unit that holds the header, twice
  local header=$1
  shift
  printf '#include "%s"\n#include "%s"\ntypedef int zevoci_unit;\n' "$header" "$header" |
    "$@" "${warnings[@]}" - || { echo "FAILED: $header with $*" >&2; failed=1; }
}

for path in "${include[0]}"/*.h "${include[1]}"/*.h; do
  header=$(basename "$path")
  for standard in c89 c99 c11; do alone "$header" "$cc" "-std=$standard" -x c; done
  for standard in c++11 c++20; do alone "$header" "$cxx" "-std=$standard" -x c++; done
done
# All of them together, in the orders that programs happen to have.
names=$(cd "${include[0]}" && ls ./*.h && cd "${include[1]}" && ls ./*.h)
for order in cat tac; do
  unit=$($order <<< "$names" | sed 's|^./\(.*\)|#include "\1"|')
  "$cc" -std=c89 -x c "${warnings[@]}" - <<< "$unit
typedef int zevoci_unit;" || { echo "FAILED: all headers, $order" >&2; failed=1; }
done
"$cc" -std=c11 "${warnings[@]}" "$here/header_facts.c" ||
  { echo "FAILED: facts of the published interface" >&2; failed=1; }
exit $failed
