
 ok 