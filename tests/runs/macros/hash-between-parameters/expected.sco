
 open $m(1'2) 
 # # 
 xy 
e
