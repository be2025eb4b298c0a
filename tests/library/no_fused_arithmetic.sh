#!/bin/sh
# No fused multiply-add in the library's code: it would round once where the design rounds twice.
#   no_fused_arithmetic.sh OBJDUMP LIBRARY
set -eu
objdump=$1 library=$2
listing=$(mktemp)
trap 'rm -f "$listing"' EXIT

"$objdump" -d --no-show-raw-insn "$library" >"$listing"
grep -Eq '[[:space:]](mulss|vmulss|fmul|vmul\.f32)[[:space:]]' "$listing" ||
    { echo "no float multiplication found: is $library the engine?"; exit 1; }
# x86 vfmadd, vfmsub, vfnmadd, ...; AArch64 fmadd, fmla, fcmla, ...; ARMv7 vfma, vfms, vfnma (vmla rounds twice)
if grep -E '[[:space:]](vfn?m(add|sub)[a-z0-9]*|fn?m(add|sub)|fml[as]|fcmla|vfn?m[as](\.[a-z0-9]+)?)[[:space:]]' "$listing"; then
    echo "fused multiply-adds in $library"
    exit 1
fi
echo "no fused multiply-add"
