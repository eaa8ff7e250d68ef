
 a 
 b 