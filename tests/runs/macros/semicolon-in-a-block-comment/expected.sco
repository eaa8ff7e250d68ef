
 a /* ; */ x 
e
