#!/usr/bin/env bash
# Benchmarks: each workload runs with tarn and, in the same run, with its
# peer; the script prints both times (best of N runs), their ratio, and the
# machine's steps per second where tarn_stats reports them. The peer is
# Debian's optimised CPython, /usr/bin/python3, by its full path (a python3
# found earlier on PATH may be a slower wrapper).
#
#   bench/run.sh [machine|numbers|all]   (default all)
set -u
cd "$(dirname "$0")/.."
TARN=build/tarn
STATS=build/tarn_stats
RUNS=${RUNS:-3}
PYTHON=/usr/bin/python3
what=${1:-all}

source bench/timing.sh
best_time() { best "$RUNS" "$@"; }

ratio() { printf '%.2f' "$(echo "$1 / $2" | bc -l)"; }

steps_per_second() {
  local steps t
  steps=$("$STATS" "$1" 2>&1 >/dev/null | sed -n 's/^steps //p')
  t=$2
  printf '%s steps, %.1f M steps/s' "$steps" "$(echo "$steps / $t / 1000000" | bc -l)"
}

if ! command -v bc >/dev/null 2>&1; then
  echo "bench: installing bc" >&2
  SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO=sudo
  $SUDO apt-get install -y -q bc >/dev/null
fi

machine() {
  local d=bench/machine
  echo "== machine workloads (tarn vs $PYTHON)"
  for w in nfib church sumdeep listdrop evenodd ackermann primes; do
    local want got tt tp
    want=$("$PYTHON" "$d/$w.py")
    got=$("$TARN" "$d/$w.tarn")
    [ "$want" = "$got" ] || echo "  $w: OUTPUT DIFFERS: tarn '$got' python '$want'"
    tt=$(best_time "$TARN" "$d/$w.tarn")
    tp=$(best_time "$PYTHON" "$d/$w.py")
    echo "  $w: tarn ${tt}s  python3 ${tp}s  ratio $(ratio "$tt" "$tp")  ($(steps_per_second "$d/$w.tarn" "$tt"))"
  done
  local tplain tcall
  tplain=$(best_time "$TARN" "$d/memo_plain.tarn")
  tcall=$(best_time "$TARN" "$d/memo_call.tarn")
  echo "  memo: plain ${tplain}s  call form ${tcall}s  call/plain $(ratio "$tcall" "$tplain")"
}

numbers() {
  if [ -x bench/numbers/run.sh ]; then bench/numbers/run.sh; fi
}

case "$what" in
  machine) machine ;;
  numbers) numbers ;;
  all) machine; numbers ;;
esac
case "$what" in data|all) bench/data/run.sh ;; esac
case "$what" in resources|all) bench/resources.sh "$TARN" ;; esac
