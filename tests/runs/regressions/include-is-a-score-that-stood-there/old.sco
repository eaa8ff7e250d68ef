old score
