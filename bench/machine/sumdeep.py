import sys, threading
sys.setrecursionlimit(2000000)
threading.stack_size(1 << 30)
def s(n): return 0 if n == 0 else n + s(n - 1)
def main(): print("[%d]" % s(1000000))
t = threading.Thread(target=main); t.start(); t.join()
