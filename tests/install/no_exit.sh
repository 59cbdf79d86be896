#!/usr/bin/env bash
# A library must not end its program: no object file may refer to exit and its kin, but for those
# whose work that is.
#
# usage: no_exit.sh OBJECT_LIST_FILE [ALLOWED_SOURCE...]   sources by path, as core/stubs.cpp
set -euo pipefail
list=$1
shift

failed=0 seen=0
while IFS= read -r object; do
  seen=$((seen + 1))
  for allowed in "$@"; do
    [[ $object == */"$allowed".o ]] && continue 2
  done
  calls=$(nm -u "$object" | awk '{ print $2 }' | grep -xE 'exit|_exit|_Exit|quick_exit' || true)
  [ -z "$calls" ] || { echo "FAILED: $object refers to" $calls >&2; failed=1; }
done < <(tr ';' '\n' < "$list")
[ "$seen" -gt 0 ] || { echo "FAILED: no object files in $list" >&2; exit 1; }
[ "$failed" = 0 ] && echo "$seen object files do not end the process"
exit $failed
