
 # $m 
 $m 
 ## X 
e
