#!/usr/bin/env python3
"""Differential test of the hint text arithmetic against python3's decimal
module, through decimal_probe: random hint texts from one digit to 200,000
digits, some also with the scalar kernels; results by the operators' rules
(floor division; remainder |x| mod |y| for equal signs, |y| minus it
otherwise, zero counting as positive; powers give 0 for a negative exponent
and 1 for exponent 0).

Usage: decimal_vs_python.py PROBE [--small]   (--small: sanitizer builds)
"""
import decimal
import random
import subprocess
import sys

probe, small = sys.argv[1], '--small' in sys.argv[2:]
ctx = decimal.getcontext()
ctx.prec, ctx.Emax, ctx.Emin = 1_000_000, decimal.MAX_EMAX, decimal.MIN_EMIN
ctx.traps[decimal.Inexact] = True  # every result below must be exact
D = decimal.Decimal


def value(t):
    return -D(t[1:]) if len(t) > 1 and t[0] == '0' else D(t)


def text(v):
    s = str(v)
    return '0' if v == 0 else '0' + s[1:] if s[0] == '-' else s


def plus(t):
    return t == '0' or t[0] != '0'


def expected(op, x, y):
    if op.startswith('scalar-'):
        return expected(op[7:], x, y)
    a, b = value(x), value(y) if y else None
    if op in ('over', 'cent', 'divmod') and b == 0:
        return 'Z'
    if op == 'divmod':
        return expected('over', x, y) + ' ' + expected('cent', x, y)
    if op == 'over':
        q, r = divmod(a, b)  # truncating
        return text(q - 1 if r != 0 and (a < 0) != (b < 0) else q)
    if op == 'cent':
        r = abs(a) % abs(b)
        return text(r if plus(x) == plus(y) or r == 0 else abs(b) - r)
    if op == 'powa':
        return '0' if b < 0 else '1' if b == 0 else text(a ** int(b))
    if op == 'half':
        return text(abs(a) // 2 * (1 if plus(x) else -1))
    return {'add': lambda: text(a + b), 'sub': lambda: text(a - b), 'mul': lambda: text(a * b),
            'opp': lambda: text(-a), 'cmp': lambda: str((a > b) - (a < b))}[op]()


rng = random.Random(20261121)


def magnitude(n):  # random digits, or runs of 9s, 0s and 1 0...0
    shape = rng.randrange(5)
    if shape == 0:
        return '9' * n
    if shape == 1:
        return '1' + '0' * (n - 1)
    first = rng.choice('123456789')
    return first + ''.join(rng.choice('09' if shape == 2 else '0123456789') for _ in range(n - 1))


def hint(n):
    m = '0' if rng.randrange(30) == 0 else magnitude(n)
    return '0' + m if m != '0' and rng.randrange(2) else m


cases = []
for _ in range(3000):
    n1 = rng.choice([rng.randrange(1, 40), rng.randrange(1, 400), rng.randrange(1, 4000)])
    n2 = rng.choice([rng.randrange(1, 40), rng.randrange(1, n1 + 2), n1])
    x, y = hint(min(n1, 1500) if small else n1), hint(min(n2, 1500) if small else n2)
    cases += [(op, x, y) for op in ('add', 'sub', 'mul', 'over', 'cent', 'divmod', 'cmp')]
    cases += [('half', x, ''), ('opp', x, '')]
# The scalar kernels on part of the same operands (the vector ones are used
# wherever the processor has them).
cases += [('scalar-' + op, x, y) for op, x, y in cases[:8000] if op in ('add', 'mul', 'divmod')]
for _ in range(200):
    e = rng.randrange(0, 100 if small else 300)
    cases.append(('powa', hint(rng.randrange(1, 12)), str(e) if rng.randrange(8) or e == 0 else '0%d' % e))
big = [(100000, 100000), (100000, 1000), (50000, 7), (200000, 100000), (150000, 3000),
       (60000, 59000), (120000, 40000)]
for n1, n2 in big:
    x, y = magnitude(n1 // 10 if small else n1), magnitude(max(1, n2 // 10) if small else n2)
    cases += [(op, sx + x, y) for op in ('mul', 'over', 'cent', 'divmod', 'add') for sx in ('', '0')]
for b, e in [('3', 200000), ('07', 50001), ('012', 33333), ('123456789', 10001), ('1000', 3000)]:
    cases.append(('powa', b, str(e // 10 if small else e)))

got = subprocess.run([probe], input='\n'.join(' '.join(c) for c in cases) + '\n',
                     capture_output=True, text=True, check=True).stdout.split('\n')
bad = [(c, got[k]) for k, c in enumerate(cases) if got[k] != expected(*c)]
for (op, x, y), g in bad[:10]:
    print('MISMATCH %s %s %s: got %s want %s' % (op, x[:50], y[:50], g[:80], expected(op, x, y)[:80]))
print('%d cases, %d mismatches' % (len(cases), len(bad)))
sys.exit(1 if bad else 0)
