
 z end 
e
