
 #aX#b# 
e
