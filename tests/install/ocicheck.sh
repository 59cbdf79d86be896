#!/usr/bin/env bash
# Runs ocicheck on programs whose functions are known, on itself, on the library, and on what is
# no program.
#
# usage: ocicheck.sh OCICHECK LIBRARY SCRATCH_DIR CC
set -euo pipefail
ocicheck=$1 library=$2 scratch=$3 cc=$4

fail() { echo "FAILED: $*" >&2; exit 1; }

rm -rf "$scratch"
mkdir -p "$scratch"

checked() {  # STATUS ARGUMENT...: leaves what ocicheck writes in out and err
  local expected=$1 status=0
  shift
  "$ocicheck" "$@" > "$scratch/out" 2> "$scratch/err" || status=$?
  [ "$status" = "$expected" ] || fail "status $status of ocicheck $*: $(cat "$scratch/out")"
}
prints() {  # LINE...: the output's lines, without those of the file's name
  printf '%s\n' "$@" | diff - <(grep -v '^/' "$scratch/out") || fail "unexpected output"
}

cat > "$scratch/calls.c" <<'END'
extern int OCIPing(), OCILobErase(), OCICollSize(), OCINoSuchCall();
int main(void) { return OCIPing() + OCILobErase() + OCICollSize() + OCINoSuchCall(); }
END
cat > "$scratch/works.c" <<'END'
extern int OCIPing(), OCIBindByName2();
int main(void) { return OCIPing() + OCIBindByName2(); }
END
cat > "$scratch/looks_up.c" <<'END'
const char *const libraries[] = {"libclntsh.so.19.1", 0};
const char *const names[] = {"OCIStmtFetch2", "OCIObjectPin", "OCILobLocator", 0};
int main(void) { return names[0] == libraries[0]; }
END
lines=("  unknown            imported OCINoSuchCall" "  stops the process  imported OCILobErase"
  "  fails softly       imported OCICollSize" "  works              imported OCIPing" ""
  "Verdict: 1 function is not in the library, 1 function stops the process, 1 function fails softly, 1 works."
  "Set ZEV_OCI_UIFCTN_RET_OK to let a program go on behind a function that stops the"
  "process; it then returns OCI_SUCCESS and has done nothing.")
"$cc" -c "$scratch/calls.c" -o "$scratch/calls.o" -w
checked 2 "$scratch/calls.o"
prints "${lines[@]}"
"$cc" -shared -fPIC "$scratch/calls.c" -o "$scratch/calls.so" -w
checked 2 "$scratch/calls.so"
prints "${lines[@]}"
strip -s "$scratch/calls.so"
checked 2 "$scratch/calls.so"
prints "${lines[@]}"

"$cc" -c "$scratch/works.c" -o "$scratch/works.o" -w
checked 0 "$scratch/works.o"
prints "  works              imported OCIBindByName2" "  works              imported OCIPing" "" \
  "Verdict: every function works (2 work)."

"$cc" "$scratch/looks_up.c" -o "$scratch/looks_up" -w
checked 1 "$scratch/looks_up"
prints "  asks for libclntsh.so.19.1" "  fails softly       named    OCIObjectPin" \
  "  works              named    OCIStmtFetch2" "" "Verdict: 1 function fails softly, 1 works."
checked 1 --json "$scratch/looks_up"
entry='{"name":"%s","group":"%s","how":"named"}'
printf -v functions "$entry,$entry" OCIObjectPin fails OCIStmtFetch2 works
grep -qF "\"libraries\":[\"libclntsh.so.19.1\"],\"functions\":[$functions]}]," "$scratch/out" &&
  grep -qF '"counts":{"works":1,"fails":1,"stops":0,"unknown":0},"verdict":1}' "$scratch/out" ||
  fail "--json"

# A program has the names of all functions and uses none; the library has them and defines them.
nothing=("  uses no function of the interface" "" "Verdict: no function of the interface is used.")
checked 0 "$ocicheck"
prints "${nothing[@]}"
checked 0 "$library"
prints "${nothing[@]}"

# A directory holds what its files hold, and other files do not matter there.
checked 2 "$scratch"
grep -q "^$scratch/calls.o " "$scratch/out" || fail "a file of a directory"
grep -q "calls.c" "$scratch/out" && fail "a text of a directory"

checked 3 "$scratch/calls.c"
grep -qx "$scratch/calls.c: not an ELF file" "$scratch/out" || fail "a text"
head -c 100 "$scratch/calls.so" > "$scratch/cut.so"
checked 3 "$scratch/cut.so"
grep -qx "$scratch/cut.so: the file ends before what it announces" "$scratch/out" || fail "cut"
checked 3 "$scratch/missing"
grep -qx "$scratch/missing: does not exist" "$scratch/out" || fail "a missing file"
checked 64
grep -q '^usage: ocicheck' "$scratch/err" || fail "usage"
checked 64 --yaml "$scratch/works.o"
checked 0 --help
echo "ocicheck tells what is known"
