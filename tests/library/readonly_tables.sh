#!/bin/sh
# Constants lie in memory that nothing can write: the generated tables, and whatever else is named as a constant.
#   readonly_tables.sh OBJDUMP LIBRARY ROOT
set -eu
objdump=$1 library=$2 root=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Section and plain name of every object whose name is a constant's (k and a capital letter).
"$objdump" -t "$library" | awk '$3 == "O"' |
    sed -nE -e 's/^.* (\.[^[:space:]]+)[[:space:]].*[0-9](k[A-Z][A-Za-z0-9]*)E$/\1 \2/p;t' \
        -e 's/^.* (\.[^[:space:]]+)[[:space:]].*[0-9](k[A-Z][A-Za-z0-9]*)$/\1 \2/p' |
    sort -u >"$work/constants"

# Constants that hold addresses are filled in while loading and protected then.
if grep -vE '^\.(rodata|data\.rel\.ro)' "$work/constants"; then
    echo "these constants can be written in $library"
    exit 1
fi

sed -nE 's/^extern const .* (k[A-Z][A-Za-z0-9]*)(\[.*)?;.*/\1/p' "$root"/dsp/*_tables.h "$root"/modules/*/*_tables.h |
    sort -u >"$work/tables"
[ "$(wc -l <"$work/tables")" -ge 11 ] || { echo "only these tables found below $root:"; cat "$work/tables"; exit 1; }
while read -r table; do
    grep -qE "^\.rodata[^ ]* $table\$" "$work/constants" || { echo "$table is not in read-only data"; exit 1; }
done <"$work/tables"
echo "$(wc -l <"$work/tables") tables and $(wc -l <"$work/constants") constants cannot be written"
