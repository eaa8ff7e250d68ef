
a # $n # $n # N 
e
