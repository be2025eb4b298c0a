#!/bin/sh
# The guard lets the engine's own flags pass and refuses the ones under which the same source gives other bits.
#   numeric_flags.sh COMPILER GUARD_HEADER
set -eu
compiler=$1 guard=$2
accepts() { printf 'int x;\n' | "$compiler" -x c++ -std=c++20 -include "$guard" "$@" -fsyntax-only - 2>/dev/null; }

accepts -O2 || { echo "plain flags are refused"; exit 1; }
for flags in -ffast-math -ffinite-math-only; do
    ! accepts -O2 $flags || { echo "$flags is accepted"; exit 1; }
done
case $("$compiler" -dumpmachine) in
    x86_64*) ! accepts -O2 -mfma || { echo "-mfma is accepted"; exit 1; } ;;
esac
echo "the guard accepts and refuses as it should"
