import sys
sys.setrecursionlimit(10000)
# A lazy stream of cells (head, thunk of the tail), filtered by a recursive test.
def from_(n): return (n, lambda: from_(n + 1))
def prime(n): return chk(n, 2)
def chk(n, d): return True if n < d * d else (False if n % d == 0 else chk(n, d + 1))
def filt(l):
    h, t = l
    return (h, lambda: filt(t())) if prime(h) else filt(t())
def sp(n, l): return 0 if n == 0 else l[0] + sp(n - 1, l[1]())
print("[%d]" % sp(1500, filt(from_(2))))
