
 macro-1 
e
