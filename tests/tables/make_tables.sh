#!/bin/sh
# zoq-make-tables where it cannot write: one line, the exit code, every old file whole.
#   make_tables.sh ZOQ_MAKE_TABLES ROOT
set -eu
maker=$1 root=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for file in dsp/fft_tables.h dsp/fft_tables.cpp modules/den/den_tables.cpp modules/vb/vb_tables.cpp \
    modules/tws/tws_tables.cpp modules/x2b/x2b_tables.cpp; do
    mkdir -p "$work/old/$(dirname $file)"
    cp "$root/$file" "$work/old/$file"
done
cp -r "$work/old" "$work/tree"
cd "$work"

#   fails PATTERN COMMAND    exit code 3 and one line that matches
fails() {
    pattern=$1 code=0
    shift
    sh -c "$@" 2>err.txt || code=$?
    if [ "$code" -ne 3 ] || [ "$(wc -l <err.txt)" -ne 1 ] || ! grep -q "$pattern" err.txt; then
        echo "FAILED ($code, no '$pattern'): $*"
        cat err.txt
        exit 1
    fi
}

fails 'cannot write .*x2b_tables.cpp: File too large' "ulimit -f 500; '$maker' --source tree >out.txt"
fails 'cannot write standard output' "'$maker' --source tree >/dev/full"
fails 'is not the source tree' "'$maker' --source nowhere"
"$maker" --source tree --check >out.txt || { echo "a file was left in part"; cat out.txt; exit 1; }
[ -z "$(find tree -name '*.new')" ] || { find tree -name '*.new'; exit 1; }
echo "old files stay whole"
