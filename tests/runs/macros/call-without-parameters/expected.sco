
 a one two b 
e
