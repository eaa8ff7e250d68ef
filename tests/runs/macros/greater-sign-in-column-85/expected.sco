
 #a$m#b# 
e
