
 $m 
 x 
e
