
;I-block #1 (i1):
i1    0.000  1.000 

;I-block #2 (i2):
i2    0.000  1.000 

e
