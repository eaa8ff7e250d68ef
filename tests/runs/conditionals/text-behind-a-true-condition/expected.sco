
 $nope ~nope 
e
