
 a 
 
c 
e
