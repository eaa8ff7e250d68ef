
 a /*/ $m */ x 
e
