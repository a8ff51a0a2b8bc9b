n=1000000
v=[None]*(n+1)
for p in range(2,1001):
    if v[p] is None:
        for j in range(p*p,n+1,p):
            v[j]=1
c=0
for i in range(2,n+1):
    if v[i] is None: c+=1
print([c])
