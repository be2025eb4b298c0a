#!/bin/sh
# Includes run one way: host -> chain -> modules -> dsp; no module includes another.
#   include_rules.sh ROOT
set -eu
cd "$1"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

platform='(android/log|system/audio|utils/(Errors|SortedVector|String8))\.h'
public='(zoq2processing|audio_parameter)\.h'
modules=$(for m in modules/*/; do m=$(basename "$m"); printf '%s' "modules/$m/$m\.h|"; done)
# What each room may name in an include of ours; own headers included.
allowed() {
    case $1 in
        dsp) echo 'dsp/.*' ;;
        platform) echo "$platform" ;;
        modules/x2b) echo 'dsp/.*|modules/x2b/.*|modules/drc/drc\.h' ;;
        modules/*) echo "dsp/.*|$1/.*" ;;
        chain) echo "${modules}chain/.*|dsp/(frame|shared_value)\.h" ;;
        include) echo "${modules}$platform|chain/.*|dsp/(fft|frame|grid|section)\\.h" ;;
        host) echo "${modules}$public|$platform|host/.*|chain/.*|dsp/(frame|shared_value)\\.h" ;;
        tools | adapters) echo "$public|$platform|host/.*|$1/.*" ;;
    esac
}

count=0
for room in dsp platform modules/* chain include host tools adapters; do
    [ -d "$room" ] || continue
    find "$room" -name '*.h' -o -name '*.cpp' >"$work/files"
    while read -r file; do
        count=$((count + 1))
        # "..." is always ours; <...> is ours where it is one of the platform's headers.
        sed -nE 's/^ *# *include *"([^"]*)".*/\1/p' "$file" >"$work/named"
        sed -nE "s,^ *# *include *<($platform)>.*,\\1,p" "$file" >>"$work/named"
        grep -vxE "$(allowed "$room")" "$work/named" | sed "s,^,$file includes ," >>"$work/unlawful" || true
        # The engine knows the C++ library and, for vectors and the flush mode, the processor's intrinsics.
        case $room in
            dsp | modules/* | chain)
                sed -nE 's/^ *# *include *<([^>]*\.h)>.*/\1/p' "$file" | grep -vxE '[a-z]mmintrin\.h|arm_neon\.h' |
                    sed "s,^,$file includes ," >>"$work/unlawful" || true ;;
        esac
    done <"$work/files"
done

[ "$count" -gt 20 ] || { echo "only $count files found in $1"; exit 1; }
if [ -s "$work/unlawful" ]; then
    cat "$work/unlawful"
    exit 1
fi
echo "$count files include only what their rooms may"
