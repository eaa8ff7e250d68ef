
 in 
e
