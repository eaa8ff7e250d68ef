
 "a ; b" 
e
