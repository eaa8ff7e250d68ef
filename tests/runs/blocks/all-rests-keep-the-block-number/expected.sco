
;I-block #1 (i1):
;I-block #1 (i2):
i2    0.000  1.000     7.000 

e
