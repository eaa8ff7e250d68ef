// The tempo map: from beats to seconds.
#pragma once

#include "base/error_code.h"

namespace korvo {

struct Messages;
struct SourceReader;

inline constexpr int kMaxTempoDefs = 50;

// Times in beats, tempos in beats per minute.
struct TempoDef {
  float startTime = 0.0F;
  float startTempo = 60.0F;
  float endTime = 0.0F;
  float endTempo = 60.0F;
  float curveType = 1.0F;
  float Vcurve = 0.0F;  // the exponent of the user's own curve
};

// Definitions in the order in which they were made, never sorted; the first one is always there.
struct TempoMap {
  TempoDef defs[kMaxTempoDefs];
  int count = 1;
  float current = 60.0F;  // the tempo of the last conversion
  float beat = 0.0F;      // where the i-block is: the beat at which values are converted
};

// Reads one `te(...)` statement, the position just behind the name, and stores its definition.
// Errors: 19, 32, 46, 63, 64, 96, 150 to 153, 155 to 159, and those of `read_line`.
ErrorCode DefineTempo(SourceReader &source, TempoMap &map);

// Converts `beats` to seconds with the tempo at the present beat (a value that spans a tempo change
// is not integrated) and keeps that tempo as the current one. -t prints the conversion.
float BeatsToSeconds(TempoMap &map, Messages &messages, float beats);

// The tempo in beats per minute at `beat`.
float TempoAtBeat(const TempoMap &map, float beat);

// Prints all definitions.
void ListTempos(const TempoMap &map, Messages &messages);

}  // namespace korvo
