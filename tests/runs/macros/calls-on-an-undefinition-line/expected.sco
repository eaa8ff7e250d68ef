
 $m 
e
