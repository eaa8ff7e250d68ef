
 a 
 b 
e
