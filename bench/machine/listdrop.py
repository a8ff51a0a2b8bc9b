l = None
for n in range(1000000, 0, -1): l = (n, l)
l = None
print("[1]")
