
 hé € 
e
