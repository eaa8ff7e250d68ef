
 x 
	21 
e
