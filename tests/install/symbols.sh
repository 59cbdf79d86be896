#!/usr/bin/env bash
# Compares what the shared library exports with the export lists and with its neighbours.
#
# usage: symbols.sh SHARED_LIBRARY LIST...   the exported names are exactly those of the lists
set -euo pipefail
library=$1
shift

fail() { echo "FAILED: $*" >&2; exit 1; }
sorted() { LC_ALL=C sort -u; }
defined() { nm -D --defined-only "$1" | awk '{ print $NF }' | sed 's/@.*//' | sorted; }

exported=$(nm -D --defined-only --with-symbol-versions "$library" | awk '$2 != "A" { print $NF }')
foreign=$(grep -v '@@ZEVOCI_11$' <<< "$exported" || true)
[ -z "$foreign" ] || fail "without the version ZEVOCI_11:" $foreign
names=$(sed 's/@.*//' <<< "$exported" | sorted)
listed=$(cat "$@" | sed '/^$/d' | sorted)

unlisted=$(comm -23 <(echo "$names") <(echo "$listed"))
[ -z "$unlisted" ] || fail "exported and in no list:" $unlisted
absent=$(comm -13 <(echo "$names") <(echo "$listed"))
[ -z "$absent" ] || fail "listed and not exported:" $absent

# A name that another library defines too would change that library's own answers.
for neighbour in libc.so.6 libm.so.6 libpq.so.5 libstdc++.so.6; do
  path=$(ldd "$library" | awk -v name="$neighbour" '$1 == name { print $3 }')
  [ -n "$path" ] || path=$(cc -print-file-name="$neighbour")
  [ -e "$path" ] || fail "$neighbour is not found"
  clash=$(comm -12 <(echo "$names") <(defined "$path"))
  [ -z "$clash" ] || fail "$neighbour defines too:" $clash
done
generated=$(grep -E '^yy|_yy' <<< "$names" || true)
[ -z "$generated" ] || fail "names of scanner or parser generators:" $generated
echo "$(wc -l <<< "$names") exported names, as listed"
