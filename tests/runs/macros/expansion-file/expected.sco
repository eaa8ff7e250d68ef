
 x 1 
1 
 kept 
 last ; $m 
e
