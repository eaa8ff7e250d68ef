
 x 
e
