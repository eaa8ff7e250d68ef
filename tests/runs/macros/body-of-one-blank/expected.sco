
 a b 
e
