
 one 