#!/bin/sh
# The text commands from outside: exit codes, one line for every failure, files that change whole or not at all.
#   config_cli.sh ZOQ
set -u
zoq=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0

#   expect CODE PATTERN COMMAND...    the exit code, and a line that matches in what it prints
expect() {
    code=$1 pattern=$2
    shift 2
    "$@" >out.txt 2>err.txt
    got=$?
    cat out.txt err.txt >all.txt
    if [ "$got" -ne "$code" ] || ! grep -q -- "$pattern" all.txt; then
        echo "FAILED ($got instead of $code, or no '$pattern'): $*"
        cat all.txt
        failures=$((failures + 1))
    fi
}

#   fails CODE PATTERN COMMAND...     the same, with exactly one line, on standard error
fails() {
    expect "$@"
    if [ -s out.txt ] || [ "$(wc -l <err.txt)" -ne 1 ]; then
        echo "not one line: $*"
        failures=$((failures + 1))
    fi
}

expect 0 'EQ_16khzgain' "$zoq" params
expect 0 'boostLin = 0.05 x' "$zoq" params vb_BOOSTLIN
expect 0 '"fallback": 25' "$zoq" params VB_boostlin --json
fails 2 'did you mean VB_boostlin' "$zoq" params VB_boost

printf 'compressionGain = 70\n' >good.txt
printf 'compressionGain = 170\n' >odd.txt
printf 'EQ_62hzgain: 3\nVB_boostlin\n' >bad.txt
expect 0 'compressionGain  *70 ' "$zoq" config check good.txt
expect 1 'odd.txt:1:19: warning' "$zoq" config check odd.txt
expect 2 'bad.txt:1:1: error' "$zoq" config check bad.txt
expect 2 '"verdict": "errors"' "$zoq" config check bad.txt --json
expect 2 'standard input:2:1: error' sh -c "'$zoq' config check - <bad.txt"
expect 0 'DS_stereoWidth  *80  *stereoWidth 0.8' "$zoq" config check good.txt --string DS_stereoWidth=80
fails 2 "cannot read 'none.txt'" "$zoq" config check none.txt
fails 2 'cannot read' "$zoq" config check .
fails 2 "unknown command 'chek'" "$zoq" config chek good.txt
fails 2 "unknown command 'parms'" "$zoq" parms
fails 2 'needs FILE' "$zoq" config check
fails 2 'need --fix' "$zoq" config check good.txt --in-place

expect 1 'EQ_62hzgain = 3' "$zoq" config check bad.txt --fix
expect 1 'compressionGain = 100' "$zoq" config check odd.txt --fix
grep -q '170 lies outside 0..100.*100 is written' err.txt || { echo "a change without a word"; failures=$((failures + 1)); }
printf 'bar = 13\ncompressionGain 70\n' >lost.txt
expect 1 "'bar = 13' is left out" "$zoq" config check lost.txt --fix
fails 1 'odd.txt: line 1: 170 lies outside' "$zoq" config write --from odd.txt
fails 2 'octave below --eq-highest' "$zoq" config write --eq odd.txt --eq-lowest 1000 --eq-highest 1500
cp bad.txt before.txt
expect 1 'left out' "$zoq" config check bad.txt --fix --output fixed.txt
cmp -s bad.txt before.txt || { echo "--output changed the file itself"; failures=$((failures + 1)); }
expect 0 'EQ_62hzgain  *3 ' "$zoq" config check fixed.txt
expect 1 'left out' "$zoq" config check bad.txt --fix --in-place
cmp -s bad.txt fixed.txt || { echo "--in-place differs from --output"; failures=$((failures + 1)); }
printf '\377\376E\000' >wide.txt
fails 2 'UTF-16' "$zoq" config check wide.txt --fix --in-place

printf 'Preamp: -6 dB\nFilter 1: ON PK Fc 1000 Hz Gain 6 dB Q 1.41\n' >eq.txt
expect 0 'EQ_1khzgain = ' "$zoq" config write --eq eq.txt --eq-route speaker
grep -q 'no preamp' err.txt && ! grep -q Headphone out.txt || { echo "report or route"; failures=$((failures + 1)); }
expect 0 'DS_stereoWidth=70$' "$zoq" config write --from good.txt --set ds_stereowidth=70 --as-string
fails 1 'eq.txt: line 1: the filter has no' sh -c "echo 'Filter: ON PK Fc 3' >eq.txt; exec '$zoq' config write --eq eq.txt"
fails 1 "cannot write 'none/x'" "$zoq" config write --set VB_boostlin=3 --output none/x
fails 2 'no value' "$zoq" config write --set VB_boostlin=2,5
fails 2 'needs --set' "$zoq" config write
if command -v gnuplot >/dev/null; then
    printf 'GraphicEQ: 20 3; 20000 -3\n' >eq.txt
    expect 0 'residual' "$zoq" config write --eq eq.txt --plot fit.svg --output eq_config.txt
    grep -q '</svg>' fit.svg || { echo "no picture"; failures=$((failures + 1)); }
    expect 0 'Headphone_EQ_62hzgain' "$zoq" config check eq_config.txt
fi

# No file that is read is replaced, and none appears in part.
printf 'Filter 1: ON PK Fc 1000 Hz Gain 6 dB Q 1.41\n' >eq.txt
cp eq.txt eq_before.txt
cp good.txt before.txt
fails 2 'same file' "$zoq" config write --from good.txt --output ./good.txt
fails 2 'same file' "$zoq" config write --eq eq.txt --output eq.txt
fails 2 'same file' "$zoq" config check good.txt --fix --output good.txt
fails 2 'same file' "$zoq" measure --config good.txt --csv good.txt
fails 1 'No space left' sh -c "exec '$zoq' config write --from good.txt >/dev/full"
fails 2 'No space left' sh -c "exec '$zoq' config check good.txt >/dev/full"
fails 1 'No space left' sh -c "exec '$zoq' params >/dev/full"
cmp -s good.txt before.txt && cmp -s eq.txt eq_before.txt || { echo "lost input"; failures=$((failures + 1)); }
if command -v gnuplot >/dev/null; then
    # The script is within the limit, the picture beyond it.
    expect 1 "cannot keep gnuplot's picture" sh -c "ulimit -f 20; exec '$zoq' config write --eq eq.txt --plot big.svg"
fi
for leftover in big.svg .zoq-*; do
    [ ! -e "$leftover" ] || { echo "left behind: $leftover"; failures=$((failures + 1)); }
done

[ "$failures" -eq 0 ] && echo "all as expected"
[ "$failures" -eq 0 ]
