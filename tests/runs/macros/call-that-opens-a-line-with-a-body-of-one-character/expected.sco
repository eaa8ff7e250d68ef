
N 
e
