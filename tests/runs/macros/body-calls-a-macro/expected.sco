
 a x b 
e
