
 a ; $nope 
 b /* $nope */ c 
e
