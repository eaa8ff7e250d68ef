
 b 
 c 
e
