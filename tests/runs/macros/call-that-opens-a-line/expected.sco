
 N N 
e
