
 f1 
e
