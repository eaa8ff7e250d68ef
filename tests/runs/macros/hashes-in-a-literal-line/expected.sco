
 # x #c x 
 x 
e
