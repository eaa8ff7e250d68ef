
 3 
e
