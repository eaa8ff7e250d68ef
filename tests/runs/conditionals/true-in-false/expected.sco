
 4 
e
