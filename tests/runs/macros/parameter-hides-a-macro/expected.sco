
 1 macro 
e
