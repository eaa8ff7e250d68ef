
;I-block #1 (i1):
i1    0.000  1.000 

;I-block #2 (i3):
i3    0.000  1.000 

e
