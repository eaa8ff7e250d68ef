// What is known of the p-field being read. All of it is forgotten when the next p-field begins,
// except the note octave.
#pragma once

#include <cstdint>

#include "ddf/event_list.h"
#include "reader/names.h"

namespace korvo {

// One value of a loop, and whether its event was inserted to start together with the one before.
struct LoopEntry {
  float value;
  bool shared;
};

// The values between "<" and ">", in the order in which they were produced.
struct LoopRecord {
  LoopEntry *entries = nullptr;
  std::uint32_t count = 0;
  std::uint32_t capacity = 0;
  // An entry that is not shared; without one the loop could only pile events up.
  bool hasUnshared = false;
};

struct PfieldState {
  int number = 0;
  CommandCode inputMode = kRE;
  // The last value read or produced, before deviation; "z" in the text stands for it.
  float lastValue = 0.0F;
  std::int64_t filled = 0;          // events that have got a value
  std::uint32_t cursor = kNoEvent;  // the event filled last
  bool dataSeen = false;            // a value has reached an event
  // A value came when the block was full: the rest of the p-field is skipped.
  bool blockEnd = false;
  bool marked = false;                // ":" or "'" has been read, which may stand once in a p-field
  bool insertRequest = false;         // the next value starts together with the event before it
  std::uint32_t inserted = kNoEvent;  // the copy that was made last for a ":" of this p-field
  bool looping = false;               // between "<" and ">"
  LoopRecord loop;
  int noteOctave = 0;  // the octave of the last note that gave one
};

}  // namespace korvo
