#!/usr/bin/env bash
# The workloads of peers.sh as tarn programs, timed as whole processes
# (reading and parsing the program, computing, printing the result in full):
#   pow    3^200000                                  bench/numbers/pow.tarn
#   fact   fact\n\(n<2)1(n*fact(n-1)) at 10000       bench/numbers/fact.tarn
#   mul    the product of two 100,000-digit numbers  (literals written here)
#   div    quotient and remainder of a 200,000-digit by a 100,000-digit number
# The operands are the peers' (same generator, same seed). Each output is
# checked against python3's decimal before anything is timed.
#
# Usage: bench/numbers/programs.sh [runs]   (best of `runs`, default 3)
bench_dir=$(cd "$(dirname "$0")/.." && pwd)
set -euo pipefail
cd "$(dirname "$0")/../.."
runs=${1:-3}
tarn=build/tarn
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cp bench/numbers/pow.tarn bench/numbers/fact.tarn "$work"
python3 - "$work" <<'EOF'
import decimal, random, sys
random.seed(12345)
def digits(n):
    return random.choice('123456789') + ''.join(random.choice('0123456789') for _ in range(n - 1))
w = sys.argv[1]
x, y, a, b = digits(100000), digits(100000), digits(200000), digits(100000)
tail = ",seq\\x\\y\\y\n"
open(w + '/mul.tarn', 'w').write("a\\seq(puts(lisp(%s*%s)),0)%s" % (x, y, tail))
open(w + '/div.tarn', 'w').write(
    "a\\seq(puts(lisp(aa/bb)),seq(puts(lisp(aa%%bb)),0)),aa\\%s,bb\\%s%s" % (a, b, tail))
ctx = decimal.getcontext()
ctx.prec = 400000
ctx.Emax = decimal.MAX_EMAX
D = decimal.Decimal
fact = D(1)
for k in range(2, 10001):
    fact *= k
q, r = divmod(D(a), D(b))
want = {'pow': [D(3) ** 200000], 'fact': [fact], 'mul': [D(x) * D(y)], 'div': [q, r]}
for name, values in want.items():
    open(w + '/' + name + '.want', 'w').write(''.join('[%s]\n' % v for v in values))
EOF

source "$bench_dir/timing.sh"

echo "tarn programs (whole process, wall time, best of $runs)"
for w in pow fact mul div; do
  "$tarn" "$work/$w.tarn" > "$work/$w.out"
  if cmp -s "$work/$w.out" "$work/$w.want"; then check="output agrees with python3's decimal"
  else check="OUTPUT DIFFERS from python3's decimal"; fi
  printf '  %-5s %s s   %s\n' "$w" "$(best "$runs" "$tarn" "$work/$w.tarn")" "$check"
done
