
 #c $m 
 X 
e
