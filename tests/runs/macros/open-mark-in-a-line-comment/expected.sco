
 a ; /* 
 x 
e
