
 F 
e
