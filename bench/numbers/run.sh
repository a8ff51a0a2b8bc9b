#!/usr/bin/env bash
# Numbers benchmarks: the decimal arithmetic on its workloads (text in, text
# out; decimal_bench), the same workloads with bc and python3's decimal
# (peers.sh), and as tarn programs run whole (programs.sh). RUNS sets the
# number of runs whose best time is kept.
set -eu
cd "$(dirname "$0")/../.."
cmake --build build --target decimal_bench -j2 > /dev/null
echo "== decimal arithmetic (tarn's numbers/bignum/decimal, best of ${RUNS:-3})"
build/decimal_bench "${RUNS:-3}"
echo "== the same workloads with the peers"
bench/numbers/peers.sh "${RUNS:-3}"
echo "== the same workloads as tarn programs"
bench/numbers/programs.sh "${RUNS:-3}"
