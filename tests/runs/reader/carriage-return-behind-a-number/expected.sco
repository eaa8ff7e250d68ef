
;I-block #1 (i1):
i1    1.500  2.500 

e
