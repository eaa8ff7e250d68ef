
 a
e
