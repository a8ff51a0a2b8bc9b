b=b''
for i in range(1,20001):
    b=b+str(i).encode()+b' '
print([len(b)])
