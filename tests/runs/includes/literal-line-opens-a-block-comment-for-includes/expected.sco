
 a /* b 