// The text score: one "i" statement for every sounding event of a block.
#pragma once

namespace korvo {

struct Generation;
struct OutputBuffer;

// Writes the events of the present block, which has at least one and no rests. Returns the latest
// end of an event, in seconds, or 0 when all end earlier.
double ScoreWriter(Generation &making, OutputBuffer &output);

}  // namespace korvo
