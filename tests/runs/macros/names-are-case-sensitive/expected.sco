
 small large 
e
