
;I-block #1 (i1):
i1    3.546  1.000 

e
