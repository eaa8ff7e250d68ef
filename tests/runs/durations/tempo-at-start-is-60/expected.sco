
;I-block #1 (i1):
i1    0.000  2.000 

e
