
;I-block #1 (i7):
e
