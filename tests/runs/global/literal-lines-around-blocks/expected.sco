
 before 
;I-block #1 (i1):
i1    0.000  1.000 
i1    1.000  1.000 

 between 
;I-block #2 (i1):
i1    0.000  1.000 
i1    1.000  1.000 

 behind 
e
