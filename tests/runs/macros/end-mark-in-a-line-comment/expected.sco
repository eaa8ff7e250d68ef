
 a ; b */ x 
e
