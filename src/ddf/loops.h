// Loops ("<" and ">") and the completion of p-fields that end before the block does.
#pragma once

#include "base/error_code.h"
#include "ddf/pfield_state.h"

namespace korvo {

struct Generation;
struct SourceReader;

// Opens a loop at "<" and closes it at ">". False when the mark is misplaced: ">" without an open
// loop, "<" inside one or while a ":" waits for its value.
bool loopMarker(PfieldState &pfield, char mark);

// Records the value of the event filled last if a loop is open, and whether that event was
// inserted. False when memory is refused.
bool recordLoopValue(PfieldState &pfield, float value);
inline bool recordValue(PfieldState &pfield, float value) {
  return !pfield.looping || recordLoopValue(pfield, value);
}

// Gives every event that has no value yet one: the values of the loop over and over, or, without a
// loop, the last value. Draws as the value steps say, in the order of the events. Errors 32, 54.
ErrorCode completePfield(Generation &making, SourceReader &source);

// Forgets everything of a p-field but the note octave, and begins p-field `number`.
void beginPfield(Generation &making, int number);

// Releases the loop's memory.
void freeLoop(PfieldState &pfield);

}  // namespace korvo
