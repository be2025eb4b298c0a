#!/bin/sh
# How the shipped file is linked: what it needs, no lock but mutexes and once, no clock, no thread, that no memory is
# both writable and executable, and how much of it is zero-initialised.
#   hardening.sh READELF LIBRARY NEEDED...      (file names without what follows ".so")
set -eu
readelf=$1 library=$2
shift 2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
fault() { echo "$library: $1"; failed=1; }

"$readelf" -dW "$library" >"$work/dynamic"
"$readelf" -lW "$library" >"$work/segments"

printf '%s\n' "$@" | sort >"$work/lawful"
sed -nE 's/.*\(NEEDED\).*\[(lib[^]]*|ld-linux[^]]*)\.so.*/\1/p' "$work/dynamic" | sort >"$work/needed"
diff -u --label lawful --label needed "$work/lawful" "$work/needed" || fault "needs other libraries than it may"

"$readelf" --dyn-syms -W "$library" | awk '$7 == "UND" { sub(/@.*/, "", $8); print $8 }' >"$work/imports"
grep -qx pthread_mutex_lock "$work/imports" || fault "has no list of imports"
! grep -E '^(pthread_|sem_|clock|time|gettimeofday|.*sleep|syscall)' "$work/imports" |
    grep -vxE 'pthread_(once|mutex_(init|destroy|lock|unlock))' || fault "imports this lock, thread or clock"

grep -q 'SONAME.*\[libzoq2processing\.so\]' "$work/dynamic" || fault "is not named as phones load it"
! grep -Eq 'TEXTREL' "$work/dynamic" || fault "has text relocations"
! grep -Eq 'RPATH|RUNPATH' "$work/dynamic" || fault "has a search path of its own"
grep -Eq '\(FLAGS_1\).* NOW' "$work/dynamic" || fault "binds lazily"
grep -q 'GNU_RELRO' "$work/segments" || fault "leaves its relocations writable"
grep -Eq 'GNU_STACK .* RW +0x' "$work/segments" || fault "asks for an executable stack"
! grep -Eq 'LOAD .* RWE ' "$work/segments" || fault "has memory that can be written and executed"

# Integrators plan for it: 416 KiB of plain state, and at most 128 KiB more for working faster.
bss=$("$readelf" -SW "$library" | sed -nE 's/.* \.bss +NOBITS +[0-9a-f]+ [0-9a-f]+ ([0-9a-f]+).*/\1/p')
[ "$((0x$bss))" -le $(((416 + 128) * 1024)) ] || fault "has $((0x$bss)) bytes of zero-initialised memory"

[ "$failed" -eq 0 ] && echo "needs $*; relocations read-only, stack not executable"
