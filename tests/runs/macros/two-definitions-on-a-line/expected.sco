
 x 
 12 
e
