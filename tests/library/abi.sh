#!/bin/sh
# The library's binary interface is the committed one: names, arguments, records and their layout. abidiff tells what
# differs; an intended change is committed together with a new baseline:
#   abi.sh --update LIBRARY BASELINE ROOT
#   abi.sh LIBRARY BASELINE ROOT
set -eu
update=no
[ "$1" != --update ] || { update=yes; shift; }
library=$1 baseline=$2 root=$3
headers="--hd $root/include --hd $root/chain --hd $root/dsp --hd $root/modules --hd $root/platform"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# shellcheck disable=SC2086
abidw --no-corpus-path --no-comp-dir-path --no-show-locs --no-elf-needed --exported-interfaces-only \
    --drop-private-types $headers "$library" --out-file "$work/now.abi"
# Sources by their place in the tree, wherever it lies.
sed -i "s|path='$root/|path='|" "$work/now.abi"
grep -q "<class-decl name='parameterMEM'" "$work/now.abi" || { echo "$library has no types to compare"; exit 1; }
if [ "$update" = yes ]; then
    cp "$work/now.abi" "$baseline"
elif ! abidiff --no-show-locs --fail-no-debug-info "$baseline" "$work/now.abi"; then
    echo "the binary interface is not that of $(basename "$baseline"); if that is meant: tests/library/abi.sh --update"
    exit 1
fi
