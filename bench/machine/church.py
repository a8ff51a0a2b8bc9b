S = lambda a: lambda b: lambda c: a(c)(b(c))
K = lambda a: lambda b: a
I = lambda a: a
B = lambda a: lambda b: lambda c: a(b(c))
two = S(S(K(S))(K))(I)
four = two(two)
sixteen = four(two)
big = sixteen(two)
inc = lambda x: x + 1
print("[%d]" % B(big)(sixteen)(inc)(0))
