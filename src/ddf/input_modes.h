// The input modes: what a data value looks like, and what number it stands for.
#pragma once

#include <cstdint>

#include "reader/names.h"

namespace korvo {

struct Generation;

struct InputMode {
  CommandCode code;
  // Whether a value in the text of a p-field may begin with this character.
  bool (*mayBegin)(char c);
  bool (*read)(Generation &making, const char *text, std::int32_t &position, float &value);
  bool forStarts;     // allowed in P2
  bool forDurations;  // allowed in P3
};

// The input mode with this code; null for a name that is none.
const InputMode *findInputMode(CommandCode code);

// Reads one value in the input mode of the present p-field: a number in "re", "in" and "db", a note
// name in "no" (semitones), octave.pitch-class in "op" (semitones), a note length in "rh" (beats).
// "z" stands for the last value. False when there is none or it is out of bounds.
bool readValue(Generation &making, const char *text, std::int32_t &position, float &value);

}  // namespace korvo
