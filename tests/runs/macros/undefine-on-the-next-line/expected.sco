
 2 
e
