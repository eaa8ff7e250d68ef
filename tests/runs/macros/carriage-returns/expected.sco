
 x  
y.  
e
