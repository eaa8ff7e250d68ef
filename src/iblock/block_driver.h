// One i-block from its text to its lines in the score.
#pragma once

#include "base/error_code.h"

namespace korvo {

struct Generation;
struct OutputBuffer;
struct SourceReader;

// Parses the block at the position, writes its events as score lines or as a MIDI file, prints the
// block's summary and adds its durations to those of the run. A block that was skipped or has
// nothing but rests writes nothing and is no error. Errors: those of the parser, and 32 when there
// is no room for a MIDI file's note-offs.
ErrorCode BlockDriver(Generation &making, SourceReader &source, OutputBuffer &output);

}  // namespace korvo
