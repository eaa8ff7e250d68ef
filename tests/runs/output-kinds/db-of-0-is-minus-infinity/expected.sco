
;I-block #1 (i1):
i1    0.000  1.000 -inf 
i1    1.000  1.000 -inf 
i1    2.000  1.000 -inf 

e
