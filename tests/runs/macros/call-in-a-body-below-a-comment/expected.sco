
 a ; $n 
N 
e
