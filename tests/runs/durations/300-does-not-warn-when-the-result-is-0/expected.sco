
;I-block #1 (i1):
i1    2.000  2.000 

e
