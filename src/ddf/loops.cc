// A p-field's text may end before its events do. What is left is given the values of the loop over
// and over, or the last value; either takes the very steps that a value in the text takes. A value
// that shares its start with the one before it adds an event, so the number of events to be filled
// has to be raised before the block is asked whether it is full.
#include "ddf/loops.h"

#include <cstdlib>

#include "base/growing_array.h"
#include "ddf/generation.h"
#include "ddf/value_steps.h"

namespace korvo {

namespace {

// In P2 of a block measured in beats there is no number of events that an inserted one could raise.
void raiseTarget(Generation &making) {
  if (making.block.target != 0) {
    ++making.block.target;
  }
}

ErrorCode holdLastValue(Generation &making, SourceReader &source) {
  while (!blockIsFull(making)) {
    RETURN_IF_ERROR(applyValue(making, source, making.pfield.lastValue));
  }
  return kOk;
}

// Replays the loop until the block is full. Each inserted entry makes room for itself; the first
// one's first turn has been provided for before the block was asked whether it is full.
ErrorCode replayLoop(Generation &making, SourceReader &source) {
  const LoopRecord &loop = making.pfield.loop;
  bool firstTurn = true;
  for (std::uint32_t i = 0; !blockIsFull(making); i = (i + 1) % loop.count) {
    const LoopEntry &entry = loop.entries[i];
    if (entry.shared) {
      making.pfield.insertRequest = true;
      if (!firstTurn) {
        raiseTarget(making);
      }
    }
    firstTurn = false;
    RETURN_IF_ERROR(applyValue(making, source, entry.value));
  }
  return kOk;
}

}  // namespace

bool loopMarker(PfieldState &pfield, char mark) {
  bool opens = mark == '<';
  if (opens ? pfield.looping || pfield.insertRequest : !pfield.looping) {
    return false;
  }
  pfield.looping = opens;
  return true;
}

bool recordLoopValue(PfieldState &pfield, float value) {
  LoopRecord &loop = pfield.loop;
  if (!makeRoom(loop.entries, loop.capacity, loop.count + 1)) {
    return false;
  }
  bool shared = pfield.cursor == pfield.inserted;
  loop.entries[loop.count++] = {value, shared};
  loop.hasUnshared = loop.hasUnshared || !shared;
  return true;
}

ErrorCode completePfield(Generation &making, SourceReader &source) {
  if (making.pfield.number == 2 && exceedsBlock(making, making.block.target)) {
    return kOutOfMemory;
  }
  const LoopRecord &loop = making.pfield.loop;
  if (!loop.hasUnshared) {
    return holdLastValue(making, source);
  }
  if (making.pfield.number == 2) {
    making.pfield.insertRequest = false;  // a ":" at the end of the loop asks nothing of its replay
  }
  if (loop.entries[0].shared) {
    raiseTarget(making);
  }
  return replayLoop(making, source);
}

void beginPfield(Generation &making, int number) {
  PfieldState fresh;
  fresh.number = number;
  fresh.noteOctave = making.pfield.noteOctave;
  fresh.loop.entries = making.pfield.loop.entries;
  fresh.loop.capacity = making.pfield.loop.capacity;
  making.pfield = fresh;
  making.global.settings.dv = 0.0F;
  making.global.settings.pf = 1.0F;
}

void freeLoop(PfieldState &pfield) {
  std::free(pfield.loop.entries);
  pfield.loop = LoopRecord{};
}

}  // namespace korvo
