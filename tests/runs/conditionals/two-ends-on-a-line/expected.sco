
 in 
 b 
e
