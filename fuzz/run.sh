#!/bin/sh
# Runs a fuzz target a bounded number of times from its seeds; what it finds on the way goes into a fresh folder, so that
# every run is the same.
#   run.sh TARGET SEEDS RUNS [OPTION...]
set -eu
target=$1 seeds=$2 runs=$3
shift 3
corpus=$(mktemp -d)
trap 'rm -rf "$corpus"' EXIT
"$target" -seed=1 -runs="$runs" -timeout=60 -print_final_stats=1 -artifact_prefix="$target-" "$@" "$corpus" "$seeds"
