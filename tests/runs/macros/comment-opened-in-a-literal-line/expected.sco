
 /* $m 
 $m */ x 
e
