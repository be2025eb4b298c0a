#!/bin/sh
# The library's dynamic symbol table and the export list name the same symbols, both ways.
#   exports.sh NM LIBRARY EXPORT_MAP
set -eu
nm=$1 library=$2 map=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

sed -n 's/^ *\([A-Za-z_][A-Za-z0-9_]*\);$/\1/p' "$map" | sort >"$work/listed"
"$nm" -D --defined-only "$library" | awk '{ print $NF }' | sort >"$work/exported"

[ -s "$work/listed" ] || { echo "no names in $map"; exit 1; }
if ! diff -u --label listed --label exported "$work/listed" "$work/exported"; then
    echo "the library's symbols differ from the export list (- listed only, + exported only)"
    exit 1
fi
echo "$(wc -l <"$work/listed") names, listed and exported alike"
