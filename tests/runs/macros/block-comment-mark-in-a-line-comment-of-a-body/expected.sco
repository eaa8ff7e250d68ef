
 a ; /*  
b 
e
