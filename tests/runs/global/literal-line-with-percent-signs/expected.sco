
 100% %d %s %f %n 
e
