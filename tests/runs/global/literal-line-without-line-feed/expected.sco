
 f1
e
