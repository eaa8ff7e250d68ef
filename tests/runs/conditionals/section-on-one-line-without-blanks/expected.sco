
 b 
e
