
 x 