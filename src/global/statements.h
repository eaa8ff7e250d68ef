// The statements of the global area, and what they set for the rest of the run.
#pragma once

#include "base/error_code.h"
#include "base/output_buffer.h"
#include "base/random.h"
#include "global/settings.h"
#include "global/tempo_map.h"
#include "reader/names.h"

namespace korvo {

struct SourceReader;

struct GlobalState {
  TempoMap tempo;
  RunSettings settings;
  Random random;
  NameLookup name;                // the two-letter name that was read last
  OutputBuffer *score = nullptr;  // where literal lines (">") go; null for a MIDI file
};

// Runs one global statement, the position just behind its name. Error 47 for a name that is no
// global statement (PF is one: it needs a p-field); otherwise the errors of the statement.
ErrorCode RunGlobalStatement(SourceReader &source, GlobalState &global, CommandCode command);

}  // namespace korvo
