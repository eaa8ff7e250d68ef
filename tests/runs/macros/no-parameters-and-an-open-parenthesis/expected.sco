
 body
e
