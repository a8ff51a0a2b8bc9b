import sys
sys.setrecursionlimit(10000)
def even(n): return True if n == 0 else odd(n - 1)
def odd(n): return False if n == 0 else even(n - 1)
def tot(n): return 0 if n == 0 else (1 if even(n) else 0) + tot(n - 1)
print("[%d]" % tot(2000))
