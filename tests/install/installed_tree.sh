#!/usr/bin/env bash
# Installs the built library to a scratch prefix and looks at what came.
#
# usage: installed_tree.sh BUILD_DIR SCRATCH_DIR CMAKE LIBDIR
set -euo pipefail
build=$1 scratch=$2 cmake=$3 libdir=$4

fail() { echo "FAILED: $*" >&2; exit 1; }

rm -rf "$scratch"
"$cmake" --install "$build" --prefix "$scratch/prefix" > "$scratch.log" || fail "installing"

lib=$scratch/prefix/$libdir
for name in libzevoci.so libzevoci.so.11 libzevoci.so.11.0.1; do
  [ -e "$lib/$name" ] || fail "$name is not installed"
done
[ -L "$lib/libzevoci.so" ] && [ -L "$lib/libzevoci.so.11" ] || fail "names are not links"
soname=$(readelf -d "$lib/libzevoci.so" | sed -n 's/.*SONAME.*\[\(.*\)\]/\1/p')
[ "$soname" = libzevoci.so.11 ] || fail "SONAME is $soname"

installed=$(cd "$scratch/prefix/include" && find . -type f | sed 's|^\./||' | sort | tr '\n' ' ')
expected="nzt.h oci.h oci1.h ociap.h ociapr.h ocidfn.h ociextp.h ocixmldb.h oratypes.h ori.h"
expected+=" orl.h oro.h ort.h xa.h "
[ "$installed" = "$expected" ] || fail "headers installed: $installed"

"$scratch/prefix/bin/ocicheck" "$lib/libzevoci.so" > /dev/null || fail "ocicheck does not run"
[ ! -e "$lib/libclntsh.so" ] || fail "the drop-in tree came uncalled for"

# The tree works where it was moved to, too: the consumers use it there.
mv "$scratch/prefix" "$scratch/moved"
echo "installed tree is complete"
