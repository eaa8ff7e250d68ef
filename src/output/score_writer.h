// The text score: one "i" statement for every sounding event of a block.
#pragma once

namespace korvo {

struct Generation;
struct OutputBuffer;

// Writes the events of the present block, which has at least one and no rests.
void ScoreWriter(Generation &making, OutputBuffer &output);

}  // namespace korvo
