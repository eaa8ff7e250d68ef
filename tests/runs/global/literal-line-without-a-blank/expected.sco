
f1 
e
