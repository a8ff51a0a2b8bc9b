#!/usr/bin/env python3
"""Runs programs with tarn and with tarn_slow (the same interpreter with the
machine's fast paths off) and requires the same stdout, stderr and exit
status from both.

The programs: every golden program under tests/programs (with its .args,
.argv and .stdin as run_golden.sh uses them), and generated ones from a
fixed seed: integer definitions with conditionals, mutual and deep
recursion, values at the edge of a machine word, operands that are not
integers (texts, lists, fractions, truth values), sharing tests with `raws`,
and definitions that the fast paths cannot take.

Usage: fast_vs_slow.py TARN TARN_SLOW GOLDEN_DIR [COUNT]
"""
import os
import random
import re
import subprocess
import sys
import tempfile

TIMEOUT = 120


def run(binary, argv, cwd, stdin_path):
    with open(stdin_path or os.devnull, 'rb') as stdin:
        p = subprocess.run([binary] + argv, cwd=cwd, stdin=stdin, capture_output=True, timeout=TIMEOUT)
    # In the sanitizer build a failed huge allocation is reported with the
    # process id, addresses and the native call stack, which differ from run
    # to run and between the two paths: only the report's first line counts.
    err = p.stderr
    if b'ERROR: AddressSanitizer: requested allocation size' in err:
        err = re.sub(rb'0x[0-9a-f]+', b'0x?', re.sub(rb'==\d+==', b'==PID==', err.split(b'\n    #0 ')[0]))
    return p.stdout, err, p.returncode


def golden_cases(root):
    for area in sorted(os.listdir(root)):
        folder = os.path.join(root, area)
        if not os.path.isdir(folder):
            continue
        names = sorted({f.rsplit('.', 1)[0] for f in os.listdir(folder) if f.endswith(('.tarn', '.argv'))})
        for name in names:
            base = os.path.join(folder, name)
            if os.path.exists(base + '.argv'):
                argv = open(base + '.argv').read().splitlines()
            else:
                argv = [name + '.tarn']
                if os.path.exists(base + '.args'):
                    argv += open(base + '.args').read().splitlines()
            stdin = base + '.stdin' if os.path.exists(base + '.stdin') else None
            yield area + '/' + name, argv, folder, stdin


# ---- Generated programs ---------------------------------------------------------

EDGE = [0, 1, 2, 3, 7, 10, -1, -2, -7, 99999999999999999, -99999999999999999, 100000000000000000,
        -100000000000000000, 4294967296, 999999999, 316227766, 123456789012345678]
OTHER = ['[abc]', '[]', 'K', 'H', '003', '0025', '12345678901234567890123', 'cape[xy]', '(J 1 K)']


def lit(v):
    return str(v) if v >= 0 else '0' + str(-v)


class Gen:
    def __init__(self, rng):
        self.r = rng

    def atom(self, params):
        r = self.r
        k = r.random()
        if params and k < 0.5:
            return r.choice(params)
        if k < 0.8:
            return lit(r.randint(-12, 12))
        return lit(r.choice(EDGE))

    def expr(self, params, depth, calls):
        r = self.r
        if depth <= 0:
            return self.atom(params)
        k = r.random()
        if k < 0.45:
            op = r.choice('+-*/%+-*')
            return '(%s%s%s)' % (self.expr(params, depth - 1, calls), op, self.expr(params, depth - 1, calls))
        if k < 0.7:
            return '(%s)(%s)(%s)' % (self.cond(params, depth - 1, calls), self.expr(params, depth - 1, calls),
                                     self.expr(params, depth - 1, calls))
        if k < 0.85 and calls:
            name, arity = r.choice(calls)
            args = [self.expr(params, depth - 1, calls) for _ in range(arity)]
            if name.startswith('r'):
                args[0] = str(r.randint(0, 6))  # a recursion's counter stays small
            return '%s(%s)' % (name, ','.join(args))
        return self.atom(params)

    def cond(self, params, depth, calls):
        r = self.r
        a, b = self.expr(params, depth, calls), self.expr(params, depth, calls)
        if calls and r.random() < 0.2:
            preds = [c for c in calls if c[0].startswith('p')]
            if preds:
                name, arity = r.choice(preds)
                return '%s(%s)' % (name, ','.join(self.expr(params, depth, calls) for _ in range(arity)))
        k = r.random()
        if k < 0.15:
            return '!(%s%s%s)' % (a, r.choice('<>=#'), b)
        if k < 0.35:
            c, d = self.expr(params, depth, calls), self.expr(params, depth, calls)
            return '%s%s%s%s%s%s%s' % (a, r.choice('<>=#'), b, r.choice('&|'), c, r.choice('<>=#'), d)
        return '%s%s%s' % (a, r.choice('<>=#'), b)

    def value(self):
        r = self.r
        k = r.random()
        if k < 0.75:
            return lit(r.choice(EDGE) if r.random() < 0.3 else r.randint(-20, 20))
        return r.choice(OTHER)

    def program(self):
        r = self.r
        defs, calls, shows = [], [], []
        letters = 'xyzw'
        for i in range(r.randint(1, 4)):
            arity = r.randint(1, 3)
            params = list(letters[:arity])
            kind = r.random()
            name = 'f' + 'abcd'[i]
            if kind < 0.25:
                # A predicate returning the body's own K or H.
                name = 'p' + 'abcd'[i]
                body = '(%s)K(H)' % self.cond(params, 1, calls)
            elif kind < 0.6:
                # Recursion on a small counter n, with the other parameters.
                name = 'r' + 'abcd'[i]
                params = ['n'] + params[:arity - 1]
                inner = calls + [(name, len(params))]
                step = '%s(%s)' % (name, ','.join(['n-1'] + [self.expr(params, 1, calls) for _ in params[1:]]))
                rest = self.expr(params, 1, calls)
                body = '(n<1)(%s)(%s%s%s)' % (self.expr(params, 2, calls), step, r.choice('+-*'), rest)
                if r.random() < 0.3:  # two recursive calls
                    body = '(n<1)(%s)(%s+%s)' % (self.expr(params, 1, calls), step, step)
                calls = inner
                defs.append('%s\\%s\\%s' % (name, '\\'.join(params), body))
                continue
            else:
                body = self.expr(params, 3, calls)
            calls = calls + [(name, len(params))]
            defs.append('%s\\%s\\%s' % (name, '\\'.join(params), body))
        if r.random() < 0.3:
            # Mutual recursion between two definitions.
            defs.append('ev\\n\\(n<1)K(od(n-1))')
            defs.append('od\\n\\(n<1)H(ev(n-1))')
            shows.append('ev(%d)(1)(2)' % r.randint(0, 30))
        for _ in range(r.randint(1, 4)):
            name, arity = r.choice(calls)
            args = []
            for j in range(arity):
                if name.startswith('r') and j == 0:
                    args.append(str(r.randint(0, 9)))
                else:
                    args.append(self.value())
            call = '%s(%s)' % (name, ','.join(args))
            if r.random() < 0.15:
                # The same node or a new one: a result that is an argument or
                # a literal of the body must be that very node.
                shows.append('raws(%s,%s)' % (call, r.choice(args)))
            else:
                shows.append(call)
        main = '0'
        for s in reversed(shows):
            main = 'seq(puts(lisp(%s)),%s)' % (s, main)
        status = r.choice(['0', shows[0]])
        main = 'seq(%s,%s)' % (main, status) if status != '0' else main
        return 'a\\' + main + ',seq\\x\\y\\y,' + ','.join(defs)


class VectorGen:
    """Programs that thread vectors and blobs through `cork` and `look` in
    loops: fresh ones, memoised globals that must never change, the same vector passed
    twice, emptied slots, indexes out of range, and arithmetic that leaves a
    machine word after some updates were made."""

    def __init__(self, rng):
        self.r = rng

    def index(self, n):
        r = self.r
        return r.choice(['i', 'i', 'i', '0', '01', 'n-1', 'i%' + str(r.randint(1, 5)), lit(r.randint(-6, 9))])

    def element(self):
        r = self.r
        return r.choice(['i', 'i*i', 'n-i', '7', 'look(v,0)', 'look(v,i%2)', 'U', 'i*33333333333333333',
                         '(i>2)K(H)', 'i+look(v,%s)' % self.index('n')])

    def program(self):
        r = self.r
        e1, e2 = self.element(), self.element()
        i1, i2 = self.index('n'), self.index('n')
        defs = [
            # One vector threaded through a loop; the choice passes it on.
            'fa\\v\\i\\n\\(i<n)(fa(cork(v,%s,%s),i+1,n))v' % (i1, e1),
            'fb\\i\\n\\v\\(i>n)I(fb(i+1,n))(cork(v,%s,%s))' % (i2, e2),
            'fg\\i\\n\\v\\(i>n)I(fh(i,n))v,fh\\i\\n\\v\\fg(i+1,n,cork(v,%s,%s))' % (i1, e2),
            # Two vectors, which may be one.
            'fc\\v\\w\\i\\n\\(i<n)(fc(cork(w,%s,look(v,%s)),v,i+1,n))(seq(v,w))' % (i1, i2),
            'fi\\v\\w\\i\\(i<3)(fi(v,cork(w,i,%s),i+1))(seq(w,v))' % r.choice(['i', 'i*i', '7', 'look(w,0)', 'U', '(i>2)K(H)']),
            # Read after an update of a vector held twice: the old view stays.
            'fd\\v\\i\\n\\seq(cork(v,i,%s),look(v,i))' % e1,
            'fe\\v\\i\\n\\s\\(i<n)(fe(v,i+1,n,s+look(v,%s)-look(v,%s)))s' % (i1, i2),
            'ff\\v\\w\\fc(v,w,0,3)',
            'gv\\cray/0*6',
            'gb\\cape[ab]*5',
        ]
        sizes = [r.choice([1, 3, 6, 10, 300]) for _ in range(3)]  # 300: writes logged first
        def fresh(k):
            if r.random() < 0.3:  # a blob: its elements are bytes
                return 'cape[%s]*%d' % (r.choice(['a', 'xy', '07']), sizes[k])
            return 'cray/%s*%d' % (r.choice(['0', '5', 'K']), sizes[k])
        calls = [
            'fa(%s,0,%d)' % (fresh(0), r.randint(0, 12)),
            'fa(gv,0,%d)' % r.randint(0, 8),
            'fb(0,%s,%s)' % (lit(r.randint(-1, 9)), fresh(1)),
            'fg(0,%s,%s)' % (lit(r.randint(-1, 9)), fresh(2)),
            'fc(%s,%s,0,%d)' % (fresh(0), fresh(2), r.randint(0, 6)),
            'fc(gv,%s,0,%d)' % (fresh(1), r.randint(0, 6)),
            'ff(%s,%s)' % (fresh(2), fresh(2)),
            'fi(gv,%s,0)' % fresh(1),
            'fa(gb,0,%d)' % r.randint(0, 6),
            'fc(gb,%s,0,%d)' % (fresh(0), r.randint(0, 6)),
            'fd(%s,%s,4)' % (fresh(0), lit(r.randint(-3, 8))),
            'fe(fa(%s,0,5),0,%d,0)' % (fresh(1), r.randint(0, 9)),
            'gv',
        ]
        r.shuffle(calls)
        shows = calls[:r.randint(2, len(calls))] + ['gv', 'gb']
        main = '0'
        for s in reversed(shows):
            main = 'seq(puts(lisp(%s)),%s)' % (s, main)
        return 'a\\' + main + ',seq\\x\\y\\y,' + ','.join(defs)


def main():
    tarn, slow, golden = (os.path.abspath(a) for a in sys.argv[1:4])
    count = int(sys.argv[4]) if len(sys.argv) > 4 else 300
    failures = 0
    checked = 0

    def compare(label, argv, cwd, stdin, source=None):
        nonlocal failures, checked
        fast = run(tarn, argv, cwd, stdin)
        plain = run(slow, argv, cwd, stdin)
        checked += 1
        if fast != plain:
            failures += 1
            print('DIFFERS %s' % label)
            if source:
                print('  program: %s' % source)
            for what, a, b in zip(('stdout', 'stderr', 'status'), fast, plain):
                if a != b:
                    print('  %s: fast %r, slow %r' % (what, a[:300] if isinstance(a, bytes) else a,
                                                       b[:300] if isinstance(b, bytes) else b))

    for label, argv, cwd, stdin in golden_cases(golden):
        compare(label, argv, cwd, stdin)

    gen = Gen(random.Random(20261124))
    with tempfile.TemporaryDirectory() as work:
        for i in range(count):
            source = gen.program()
            path = os.path.join(work, 'g%d.tarn' % i)
            with open(path, 'w') as f:
                f.write(source)
            compare('generated %d' % i, [path], work, None, source)
        vectors = VectorGen(random.Random(20261125))
        for i in range(count // 3):
            source = vectors.program()
            path = os.path.join(work, 'v%d.tarn' % i)
            with open(path, 'w') as f:
                f.write(source)
            compare('vectors %d' % i, [path], work, None, source)
    print('%d programs, %d differ' % (checked, failures))
    return 1 if failures else 0


if __name__ == '__main__':
    sys.exit(main())
