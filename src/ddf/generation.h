// What turns values into events: the block that is being made, the p-field that is being read, and
// what the global area has set.
#pragma once

#include "base/messages.h"
#include "ddf/block_state.h"
#include "ddf/event_list.h"
#include "ddf/pfield_state.h"
#include "ddf/segment_table.h"
#include "global/statements.h"

namespace korvo {

struct Generation {
  GlobalState global;
  BlockState block;
  EventList events;
  PfieldState pfield;
  SegmentTable segments;
  std::uint64_t steps = 0;  // values and lines of the block so far
  bool midi = false;        // pitches are counted as a MIDI file counts them
  Messages *messages = nullptr;
};

// Tells the listener that `done` events of the block have got through `stage`.
void tellProgress(const Generation &making, const char *stage, std::int64_t done);

}  // namespace korvo
