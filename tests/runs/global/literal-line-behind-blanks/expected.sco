
 f1	2 
e
