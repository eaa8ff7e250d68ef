
 x x,x 
e
