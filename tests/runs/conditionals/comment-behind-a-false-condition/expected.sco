
 behind 
e
