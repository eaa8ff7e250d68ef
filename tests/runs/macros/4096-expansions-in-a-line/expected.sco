
  
  
e
