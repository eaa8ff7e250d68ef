
 a 