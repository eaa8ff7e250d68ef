
 1 x b 
e
