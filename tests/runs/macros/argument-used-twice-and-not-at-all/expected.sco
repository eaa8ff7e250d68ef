
 xx 
e
