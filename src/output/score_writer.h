// The text score: one "i" statement for every sounding event of a block.
#pragma once

struct RunState;

// Writes the events of the present block to the output, rests left out. False, with a message, when
// all of them are rests: nothing is written then, and the list is empty.
bool ScoreWriter(RunState &run);
