
 n 
e
