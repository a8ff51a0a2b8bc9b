#!/usr/bin/env python3
"""Differential test of the hint text arithmetic against Python's decimal
module, through tests/numbers/decimal_probe.cpp.

Operands are random hint texts ("0" for zero, "0" before the digits of a
negative number) of every size from one digit to 200,000 digits; the expected
results follow the operators' rules: floor division, the never-negative
remainder (|x| mod |y| for equal signs, |y| minus it otherwise, zero counting
as positive), powers with "0" for a negative exponent and "1" for exponent 0.

Usage: decimal_vs_python.py PROBE [--small]   (--small: sizes for sanitizer builds)
"""
import decimal
import random
import subprocess
import sys

probe = sys.argv[1]
small = '--small' in sys.argv[2:]

ctx = decimal.getcontext()
ctx.prec = 1_000_000
ctx.Emax = decimal.MAX_EMAX
ctx.Emin = decimal.MIN_EMIN
ctx.traps[decimal.Inexact] = True  # every result below must be exact
D = decimal.Decimal


def value(text):
    return -D(text[1:]) if len(text) > 1 and text[0] == '0' else D(text)


def text(v):
    if v == 0:
        return '0'
    s = str(v.quantize(D(1)) if v.as_tuple().exponent != 0 else v)
    return '0' + s[1:] if s[0] == '-' else s


def plus(t):  # zero counts as positive
    return t == '0' or t[0] != '0'


def expected(op, x, y):
    a = value(x)
    b = value(y) if y else None
    if op == 'add':
        return text(a + b)
    if op == 'sub':
        return text(a - b)
    if op == 'mul':
        return text(a * b)
    if op == 'over':
        if b == 0:
            return 'Z'
        q, r = divmod(a, b)  # truncating
        if r != 0 and (a < 0) != (b < 0):
            q -= 1
        return text(q)
    if op == 'cent':
        if b == 0:
            return 'Z'
        r = abs(a) % abs(b)
        if plus(x) == plus(y) or r == 0:
            return text(r)
        return text(abs(b) - r)
    if op == 'powa':
        if b < 0:
            return '0'
        if b == 0:
            return '1'
        return text(a ** int(b))
    if op == 'half':
        m = abs(a) // 2
        return text(m if plus(x) else -m)
    if op == 'opp':
        return text(-a)
    if op == 'cmp':
        return str((a > b) - (a < b))
    raise ValueError(op)


rng = random.Random(20261121)


def magnitude(n):
    shape = rng.randrange(6)
    if shape == 0:
        return '9' * n
    if shape == 1:
        return '1' + '0' * (n - 1)
    if shape == 2:
        return rng.choice('123456789') + ''.join(rng.choice('09') for _ in range(n - 1))
    return rng.choice('123456789') + ''.join(rng.choice('0123456789') for _ in range(n - 1))


def hint(n):
    if rng.randrange(30) == 0:
        return '0'
    m = magnitude(n)
    return '0' + m if rng.randrange(2) else m


cases = []
binary = ['add', 'sub', 'mul', 'over', 'cent', 'cmp']
for i in range(3000):
    n1 = rng.choice([rng.randrange(1, 40), rng.randrange(1, 400), rng.randrange(1, 4000)])
    n2 = rng.choice([rng.randrange(1, 40), rng.randrange(1, n1 + 2), n1])
    if small:
        n1, n2 = min(n1, 1500), min(n2, 1500)
    x, y = hint(n1), hint(n2)
    for op in binary:
        cases.append((op, x, y))
    cases.append(('half', x, ''))
    cases.append(('opp', x, ''))
for i in range(200):
    b = hint(rng.randrange(1, 12))
    e = str(rng.randrange(0, 300 if not small else 100))
    cases.append(('powa', b, e if rng.randrange(8) else '0' + e if e != '0' else e))

big = [(100000, 100000), (100000, 1000), (50000, 7), (200000, 100000), (150000, 3000),
       (60000, 59000), (120000, 40000)]
if small:
    big = [(n1 // 10, n2 // 10 or 1) for n1, n2 in big]
for n1, n2 in big:
    x, y = magnitude(n1), magnitude(n2)
    for op in ['mul', 'over', 'cent', 'add']:
        cases.append((op, x, y))
        cases.append((op, '0' + x, y))
for b, e in [('3', '200000'), ('07', '50001'), ('012', '33333'), ('123456789', '10001'), ('1000', '3000')]:
    if small:
        e = str(int(e) // 10)
    cases.append(('powa', b, e))

result = subprocess.run([probe], input='\n'.join(' '.join(c) for c in cases) + '\n',
                        capture_output=True, text=True, check=True)
got = result.stdout.split('\n')
failures = 0
for k, (op, x, y) in enumerate(cases):
    want = expected(op, x, y)
    if got[k] != want:
        failures += 1
        if failures <= 10:
            print('MISMATCH %s %s %s: got %s want %s' % (op, x[:50], y[:50], got[k][:80], want[:80]))
print('%d cases, %d mismatches' % (len(cases), failures))
sys.exit(1 if failures else 0)
