
 a 
 in 