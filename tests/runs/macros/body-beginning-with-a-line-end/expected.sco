
  
x 
e
