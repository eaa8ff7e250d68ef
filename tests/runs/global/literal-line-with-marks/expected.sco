
 a ; b /* c */ > d te(99) { } i1 
e
