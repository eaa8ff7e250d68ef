
 f1  
e
