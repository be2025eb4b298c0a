#!/bin/sh
# Includes run one way: tools -> host -> chain -> modules -> dsp; no module includes another, and nothing that ships
# includes tests, benchmarks or fuzz targets.
#   include_rules.sh ROOT
set -eu
cd "$1"
find dsp platform modules chain include host tables tools adapters fuzz \( -name '*.h' -o -name '*.cpp' \) 2>/dev/null | sort |
    xargs awk '
    BEGIN {
        platform = "(android/log|system/audio|utils/(Errors|SortedVector|String8))\\.h"
        public = "(zoq2processing|audio_parameter)\\.h"
        modules = "modules/(den/den|tws/tws|vb/vb|x2b/x2b|geq/geq|eq/eq|drc/drc)\\.h"
        shared = "dsp/(frame|poison|shared_value)\\.h"
        # What each room may name, beside its own headers.
        may["dsp"] = "none"
        may["platform"] = platform
        may["modules"] = "dsp/.*"
        may["modules/x2b"] = "dsp/.*|modules/drc/drc\\.h"
        may["chain"] = modules "|" shared "|dsp/grid\\.h"
        may["include"] = platform "|chain/.*|" modules "|dsp/(fft|frame|grid|section)\\.h"
        may["host"] = public "|" platform "|chain/.*|" modules "|" shared "|dsp/pcm\\.h"
        may["tables"] = "dsp/.*|modules/.*"
        may["adapters"] = public "|" platform "|host/.*"
        may["tools"] = may["adapters"] "|tables/.*|dsp/poison\\.h"
        may["fuzz"] = may["tools"] "|tools/.*|tests/(support|tools)/.*"
    }
    FNR == 1 {
        files++
        split(FILENAME, path, "/")
        room = own = path[1]
        if (room == "modules") {
            own = room "/" path[2]
            room = own in may ? own : room
        }
    }
    /^ *# *include *["<]/ {
        match($0, /["<][^">]*/)
        name = substr($0, RSTART + 1, RLENGTH - 1)
        quoted = substr($0, RSTART, 1) == "\""
        # "..." is always ours; <...> is where it names a header of the platform. The engine knows nothing else
        # than the C++ library and, for vectors, the intrinsics of the processor.
        ours = quoted || name ~ "^" platform "$"
        engine = room ~ /^(dsp|modules|chain)/
        lawful = ours ? name ~ "^(" may[room] "|" own "/.*)$" : !engine || name ~ /^([a-z_]+|[a-z]mmintrin\.h|arm_neon\.h)$/
        if (!lawful) {
            print FILENAME " includes " name
            unlawful++
        }
    }
    END {
        print files " files, " unlawful + 0 " unlawful includes"
        exit unlawful > 0 || files < 40
    }'
