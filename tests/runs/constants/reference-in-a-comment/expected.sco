
 1.000 ; ~nope 
 /* ~nope */ 1.000 
e
