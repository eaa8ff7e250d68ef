
;I-block #1 (i12):
e
