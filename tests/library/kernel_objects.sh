#!/bin/sh
# A kernel object defines nothing but its level's own functions: of a function that other objects define, too, the
# linker keeps one, and that one must run on every processor.
#   kernel_objects.sh NM LIST_OF_OBJECTS
set -eu
nm=$1 list=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

grep -E '_lanes(4|8|16)\.cpp\.[a-z]+$' "$list" >"$work/kernels" || { echo "no kernel object in $list"; exit 1; }
while read -r object; do
    level=$(expr "$object" : '.*_\(lanes[0-9]*\)\.cpp')
    "$nm" --defined-only "$object" >"$work/symbols"
    grep -q " T _ZN7android[0-9]*$level[0-9]" "$work/symbols" || { echo "$object defines no kernel of $level"; exit 1; }
    # upper case: what other objects see; u, v, w: unique or weak
    if grep -E ' [A-Zuvw] ' "$work/symbols" | grep -v " T _ZN7android[0-9]*$level[0-9]"; then
        echo "$object defines this for other objects, too"
        exit 1
    fi
done <"$work/kernels"
echo "$(wc -l <"$work/kernels") kernel objects keep to themselves"
