
 a 
 c 
 d 
 e
e
