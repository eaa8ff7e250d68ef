
 const yes endif yes undef yes if(1) yes 
e
