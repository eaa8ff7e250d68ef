
 a ; note # still body# 
c 
e
