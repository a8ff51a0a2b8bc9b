#!/usr/bin/env bash
# Resource figures: a list of ten million cells, built by the machine, held
# whole, then released. Prints the peak memory per live node and per cell
# (peak resident size over that of the same program with a one-cell list)
# and the time to build and release it (best of RUNS, less the one-cell run).
#
# A cell (J n l) is two application nodes and the number leaf n, made by the
# subtraction n-1: three live nodes per cell at the peak.
#
#   bench/resources.sh [path/to/tarn]
set -u
cd "$(dirname "$0")/.."
TARN=${1:-build/tarn}
RUNS=${RUNS:-3}
CELLS=10000000
if [ ! -x /usr/bin/time ]; then
  echo "bench: installing time" >&2
  SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO=sudo
  $SUDO apt-get install -y -q time >/dev/null
fi
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
program() {
  printf 'a\\seq(mk(%s,K),seq(puts(lisp(1)),0)),seq\\x\\y\\y,mk\\n\\l\\(n=0)l(mk(n-1,J n l))\n' "$1" > "$2"
}
program "$CELLS" "$tmp/big.tarn"
program 1 "$tmp/one.tarn"

# Best (seconds, peak KiB) of RUNS runs of a program.
measure() {
  local best_t="" best_m="" t m
  for _ in $(seq "$RUNS"); do
    read -r t m < <(/usr/bin/time -f '%e %M' "$TARN" "$1" 2>&1 >/dev/null | tail -1)
    if [ -z "$best_t" ] || [ "$(echo "$t < $best_t" | bc -l)" = 1 ]; then best_t=$t; fi
    if [ -z "$best_m" ] || [ "$m" -lt "$best_m" ]; then best_m=$m; fi
  done
  echo "$best_t $best_m"
}

read -r tb mb < <(measure "$tmp/big.tarn")
read -r to mo < <(measure "$tmp/one.tarn")
bytes=$(( (mb - mo) * 1024 ))
echo "== resources: a list of $CELLS cells, built and released"
printf '  peak %d MiB; %.1f bytes per live node, %.1f bytes per cell\n' $(( mb / 1024 )) \
  "$(echo "$bytes / ($CELLS * 3)" | bc -l)" "$(echo "$bytes / $CELLS" | bc -l)"
printf '  build and release: %.2f s (%.0f ns per cell)\n' "$(echo "$tb - $to" | bc -l)" \
  "$(echo "($tb - $to) * 1000000000 / $CELLS" | bc -l)"
