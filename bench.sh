#!/bin/sh
# Measures the data store beside its peers and prints a table: work, ours, theirs, ratio, goal. Installs the peers and what a build
# needs when that is missing. The figures of the last run lie in build/bench/results.
#   ./bench.sh            everything, about ten minutes
#   ./bench.sh --quick    each row once: shorter, and less to be trusted
set -eu
cd "$(dirname "$0")"
repetitions=3
starts=7
if [ "${1:-}" = --quick ]; then
    repetitions=1
    starts=3
fi

tools/setup.sh bench
mkdir -p build
if ! { cmake --preset linux-release -D ZRCLB_BUILD_TESTS=OFF -D ZRCLB_BUILD_BENCH=ON -B build/bench &&
    cmake --build build/bench --target env_bench env_values_bench env_size_bench env_once; } >build/bench.log 2>&1; then
    cat build/bench.log
    exit 1
fi
programs=build/bench/bench
results=build/bench/results
rm -rf "$results"
mkdir -p "$results"
[ -d /dev/shm ] && export TMPDIR=/dev/shm

# Everything runs on one core, the last; interleaved, so that a slow minute of the machine falls on all rows alike.
core="taskset -c $(($(nproc) - 1))"
measure() {
    echo "$1 ..." >&2
    $core "$programs/$1" --benchmark_repetitions="$2" --benchmark_enable_random_interleaving=true \
        --benchmark_min_time="$3" --benchmark_out="$results/$1.json" --benchmark_out_format=json >"$results/$1.log" 2>&1 ||
        { cat "$results/$1.log"; exit 1; }
}
measure env_bench "$repetitions" 0.3
measure env_values_bench "$repetitions" 0.3
measure env_size_bench "$repetitions" 0.2

echo "env_once ..." >&2
models=$(mktemp -d)
trap 'rm -rf "$models"' EXIT
for sections in 50 1000; do
    "$programs/env_once" make "$sections" "$models"
    for start in $(seq "$starts"); do
        $core "$programs/env_once" zrclb "$models/model.env" >>"$results/once_zrclb_$sections"
        $core "$programs/env_once" pugixml "$models/model.xml" >>"$results/once_pugixml_$sections"
    done
done
python3 bench/env_table.py "$results"
