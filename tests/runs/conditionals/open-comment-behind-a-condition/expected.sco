
 y 
e
