#!/usr/bin/env bash
# The workloads of decimal_bench, run by two peers for comparison:
#   pow    3^200000 in full
#   fact   10000! computed as n * fact(n - 1)
#   mul    the product of two 100,000-digit numbers
#   div    quotient and remainder of a 200,000-digit by a 100,000-digit number
# with GNU bc (whole process: reading the numbers, computing, printing) and
# with python3's decimal module (text in, text out, timed inside the process;
# processor time and wall time). Operands are random digits from a fixed seed.
#
# bc runs each workload once: its division alone takes over a minute.
#
# Usage: bench/numbers/peers.sh [runs]   (python: the best of `runs`, default 3)
bench_dir=$(cd "$(dirname "$0")/.." && pwd)
set -euo pipefail
runs=${1:-3}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

python3 - "$work" <<'EOF'
import random, sys
random.seed(12345)
def digits(n):
    return random.choice('123456789') + ''.join(random.choice('0123456789') for _ in range(n - 1))
w = sys.argv[1]
open(w + '/x', 'w').write(digits(100000))
open(w + '/y', 'w').write(digits(100000))
open(w + '/a', 'w').write(digits(200000))
open(w + '/b', 'w').write(digits(100000))
EOF

source "$bench_dir/timing.sh"

echo "bc $(bc --version | head -1 | awk '{print $2}') (whole process, wall time, one run)"
printf '3^200000\n' > "$work/pow.bc"
cat > "$work/fact.bc" <<'EOF'
define f(n) { if (n < 2) return (1); return (n * f(n - 1)); }
f(10000)
EOF
printf 'x=%s\ny=%s\nx*y\n' "$(cat "$work/x")" "$(cat "$work/y")" > "$work/mul.bc"
printf 'scale=0\na=%s\nb=%s\na/b\na%%b\n' "$(cat "$work/a")" "$(cat "$work/b")" > "$work/div.bc"
for w in pow fact mul div; do
  printf '  %-5s %s s\n' "$w" "$(BC_LINE_LENGTH=0 best 1 bc -q "$work/$w.bc")"
done

echo "python3 $(python3 -c 'import sys; print(sys.version.split()[0])') decimal (inside the process)"
python3 - "$work" "$runs" <<'EOF'
import decimal, sys, time
sys.setrecursionlimit(100000)
w, runs = sys.argv[1], int(sys.argv[2])
ctx = decimal.getcontext()
ctx.prec = 400000
ctx.Emax = decimal.MAX_EMAX
ctx.Emin = decimal.MIN_EMIN
D = decimal.Decimal
texts = {k: open(w + '/' + k).read() for k in 'xyab'}

def pow_():
    return str(D(3) ** 200000)

def fact(n):
    return D(1) if n < 2 else D(n) * fact(n - 1)

def fact_():
    return str(fact(10000))

def mul_():
    return str(D(texts['x']) * D(texts['y']))

def div_():
    q, r = divmod(D(texts['a']), D(texts['b']))
    return str(q) + str(r)

for name, fn in [('pow', pow_), ('fact', fact_), ('mul', mul_), ('div', div_)]:
    cpu = wall = 1e30
    for _ in range(runs):
        c0, w0 = time.process_time(), time.perf_counter()
        fn()
        cpu = min(cpu, time.process_time() - c0)
        wall = min(wall, time.perf_counter() - w0)
    print('  %-5s cpu %.4f s   wall %.4f s' % (name, cpu, wall))
EOF

# The same python3 workloads as whole processes (start-up, reading the
# operands, computing and printing), the like-for-like peer of a tarn program.
echo "python3 decimal (whole process, wall time, best of $runs)"
for w in pow fact mul div; do
  cat > "$work/$w.py" <<EOF2
import decimal, sys
sys.setrecursionlimit(100000)
c = decimal.getcontext(); c.prec = 400000; c.Emax = decimal.MAX_EMAX; c.Emin = decimal.MIN_EMIN
D = decimal.Decimal
w = '$work'
if '$w' == 'pow': print(D(3) ** 200000)
if '$w' == 'fact':
    def f(n): return D(1) if n < 2 else D(n) * f(n - 1)
    print(f(10000))
if '$w' == 'mul': print(D(open(w + '/x').read()) * D(open(w + '/y').read()))
if '$w' == 'div':
    q, r = divmod(D(open(w + '/a').read()), D(open(w + '/b').read()))
    print(q); print(r)
EOF2
  printf '  %-5s %s s\n' "$w" "$(best "$runs" python3 "$work/$w.py")"
done
