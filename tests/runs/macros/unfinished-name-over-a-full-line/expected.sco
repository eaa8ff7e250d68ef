
 1 
e
