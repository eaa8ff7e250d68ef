
 in 
 behind 
e
