
 one 
two 
three. 
e
