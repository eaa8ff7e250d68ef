
 ab 
e
