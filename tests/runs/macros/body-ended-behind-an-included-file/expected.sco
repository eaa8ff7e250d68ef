
 x 
 a bc 
e
