
;I-block #1 (i1):
i1    0.000  1.00     3 

e
