#!/usr/bin/env bash
# Installs the drop-in component and uses it as build scripts and programs use a client.
#
# usage: dropin.sh BUILD_DIR SCRATCH_DIR CMAKE SOURCE_DIR CC [FLAG...]
set -euo pipefail
build=$1 scratch=$2 cmake=$3 source=$4 cc=$5
flags=("${@:6}")

fail() { echo "FAILED: $*" >&2; exit 1; }

rm -rf "$scratch"
mkdir -p "$scratch"
client=$scratch/client
for _ in first again; do  # over an older installation, too
  "$cmake" --install "$build" --prefix "$client" --component dropin > "$scratch/install.log" ||
    fail "installing"
done

library=$client/lib/libzevoci.so.11.0.1
[ -f "$library" ] && [ ! -L "$library" ] || fail "the library is no file"
for folder in "$client/lib" "$client"; do
  for name in libzevoci.so libzevoci.so.11 libclntsh.so libclntsh.so.{10,11,12,18,19,20,21,23}.1; do
    [ "$(readlink -f "$folder/$name")" = "$(readlink -f "$library")" ] ||
      fail "$folder/$name is not the library"
    [[ $(readlink "$folder/$name") != /* ]] || fail "$folder/$name cannot be moved"
  done
done
headers=$(ls "$client/include")
for folder in rdbms/public rdbms/demo sdk/include; do
  [ "$(ls "$client/$folder")" = "$headers" ] || fail "headers of $folder"
done
grep -qx oci.h <<< "$headers" || fail "no oci.h"
[ -f "$client/dropin.md" ] || fail "no description"

# It works wherever it stands.
mv "$client" "$scratch/moved"
client=$scratch/moved

said() {  # PROGRAM: what it prints with the client's libraries
  LD_LIBRARY_PATH=$client/lib "$@" || fail "$1 ended with $?"
}
check() { [ "$(said "$1")" = 11.0.1.1.0 ] || fail "$1 does not work"; }

# Built as in a home, and as with a client without one.
"$cc" "${flags[@]}" "$source/consumer/consumer.c" -I"$client/rdbms/public" -L"$client/lib" \
  -lclntsh -o "$scratch/home"
check "$scratch/home"
"$cc" "${flags[@]}" "$source/consumer/consumer.c" -I"$client/sdk/include" -L"$client" \
  -lclntsh -o "$scratch/homeless"
check "$scratch/homeless"
[ "$(LD_LIBRARY_PATH=$client "$scratch/homeless")" = 11.0.1.1.0 ] || fail "without a lib folder"

# Linked elsewhere, against a client with a version in its name.
printf '%s\n' 'int OCIEnvCreate(void) { return -1; }' 'int OCIHandleAlloc(void) { return -1; }' \
  'int OCIHandleFree(void) { return -1; }' 'void OCIClientVersion(void) {}' > "$scratch/other.c"
mkdir "$scratch/other"
"$cc" -shared -fPIC -Wl,-soname,libclntsh.so.19.1 "$scratch/other.c" -o "$scratch/other/libclntsh.so"
"$cc" "${flags[@]}" "$source/consumer/consumer.c" -I"$client/include" -L"$scratch/other" \
  -lclntsh -o "$scratch/elsewhere"
readelf -d "$scratch/elsewhere" | grep -qF '[libclntsh.so.19.1]' || fail "the test's own link"
check "$scratch/elsewhere"

# Loaded at run time.
"$cc" "${flags[@]}" "$source/loader.c" -I"$client/include" -o "$scratch/loader" -ldl
said "$scratch/loader" libclntsh.so libclntsh.so.12.1 libclntsh.so.23.1 > "$scratch/loader.log"
[ "$(cat "$scratch/loader.log")" = "11.0.1.1.0 of one library" ] || fail "loading at run time"
echo "programs build and run against the drop-in tree"
