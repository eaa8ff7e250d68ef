
 

e
