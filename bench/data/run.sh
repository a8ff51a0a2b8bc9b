#!/usr/bin/env bash
# Data primitives benchmarks (best of RUNS, whole process against whole
# process, each ratio taken within one run):
#   - 200000 in-place `cork` updates threaded through one vector and one blob
#     of 10^4, 10^5 and 10^6 slots: the time per update must not grow with the
#     size (a copying update would grow linearly);
#   - a sieve of Eratosthenes over 10^6 slots with `cork`, against CPython's
#     list sieve;
#   - a blob built by appending the text of 1..20000 and a space, against
#     CPython's bytes concatenation.
# The peer is /usr/bin/python3 itself, never a wrapper found on PATH.
set -u
cd "$(dirname "$0")/../.."
TARN=build/tarn
PY=/usr/bin/python3
RUNS=${RUNS:-3}
d=bench/data
source bench/timing.sh

ratio() { printf '%.2f' "$(echo "$1 / $2" | bc -l)"; }

tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

echo "== data primitives: in-place cork (200000 updates, best of $RUNS)"
for what in vector blob; do
  for slots in 10000 100000 1000000; do
    sed "s/SLOTS/$slots/g" "$d/cork_$what.tarn" > "$tmp/cork.tarn"
    t=$(best "$RUNS" "$TARN" "$tmp/cork.tarn")
    printf '  %-6s %8d slots: %ss  %.0f ns/update\n' "$what" "$slots" "$t" \
      "$(echo "$t * 1000000000 / 200000" | bc -l)"
  done
done

echo "== data primitives against $PY (best of $RUNS)"
for w in sieve append; do
  want=$("$PY" "$d/$w.py")
  got=$("$TARN" "$d/$w.tarn")
  [ "$want" = "$got" ] || echo "  $w: OUTPUT DIFFERS: tarn '$got' python '$want'"
  tt=$(best "$RUNS" "$TARN" "$d/$w.tarn")
  tp=$(best "$RUNS" "$PY" "$d/$w.py")
  echo "  $w: tarn ${tt}s  python3 ${tp}s  ratio $(ratio "$tt" "$tp")  ($got)"
done
