
;I-block #1 (i1):
e
