
 bodyy body body (z) 
e
