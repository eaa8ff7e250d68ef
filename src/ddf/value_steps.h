// How a value reaches an event. Plain data, repeats, loops, completion and data functions all come
// through the same three steps: the start step makes an event of P2's value, the duration step
// gives P3's to the next event, the parameter step any other.
//
// Draws: every step deviates, and a deviation takes its draw even when RD and DV are 0. The start
// and the parameter step take one draw, the duration step two.
#pragma once

#include <cstdint>

#include "base/arithmetic.h"
#include "base/error_code.h"
#include "base/progress.h"
#include "base/random.h"
#include "ddf/event_list.h"
#include "ddf/generation.h"

namespace korvo {

struct SourceReader;

// A block that is measured in beats has no number of events in P2 yet.
inline bool isMeasuredInBeats(const Generation &making) { return making.block.target == 0; }

// Whether the block has all the events that its length asks for: by number where that is known,
// else by the beat clock.
inline bool blockIsFull(const Generation &making) {
  return isMeasuredInBeats(making) ? making.global.tempo.beat >= making.block.endBeat
                                   : making.pfield.filled >= making.block.target;
}

// Whether a block measured in events can never get `more` further events in P2, so that it is no
// use to begin with them: error 32 would be certain after many seconds.
bool exceedsBlock(const Generation &making, std::int64_t more);

// Starts the beat clock of a block: at the block's start in beats, measured with the tempo there.
void startClock(Generation &making);

// Tells the listener how far the p-field is.
void tellValues(const Generation &making);

// Counts a value that reaches an event.
inline void countEvent(Generation &making) {
  ++making.pfield.filled;
  making.pfield.dataSeen = true;
  if (countStep(making.steps)) {
    tellValues(making);
  }
}

enum class ZeroInterval { kAllowed, kError };

// Makes the next event of P2: `value` in beats is its rhythm. With ZeroInterval::kError a rhythm
// that converts to 0 is error 54 in a block measured in beats; there more than 65,536 events in a
// row that do not move the clock, since they are too short for it, are that error in any case.
// Error 32 when there is no room for the event. One draw.
ErrorCode startStep(Generation &making, float value, ZeroInterval zero);

// Makes the copy that an insert request asks for. Error 32.
ErrorCode insertCopy(Generation &making);

// Makes that copy at once, if a request is pending, so that the event filled next is the copy. For
// data functions, whose events are counted before they are filled. Error 32.
inline ErrorCode insertPending(Generation &making) {
  return making.pfield.insertRequest ? insertCopy(making) : kOk;
}

// The event behind the one filled last, whether or not it is filled next.
inline std::uint32_t peekNextEvent(const Generation &making) {
  std::uint32_t cursor = making.pfield.cursor;
  return cursor == kNoEvent ? firstEvent(making.events) : eventAt(making.events, cursor).next;
}

// The event that the next value of P3 and above belongs to. With an insert request pending it is a
// copy of the event filled last, made right behind it. Error 32.
inline ErrorCode nextEvent(Generation &making, EventRecord *&event) {
  RETURN_IF_ERROR(insertPending(making));
  making.pfield.cursor = peekNextEvent(making);
  event = &eventAt(making.events, making.pfield.cursor);
  countEvent(making);
  return kOk;
}

// A value spread by a fraction of itself around itself. One draw.
inline float deviate(Random &random, float value, float fraction) {
  float u = drawUnit(random);
  float d = value * fraction;
  return value - d / 2.0F + d * u;
}

// Gives `event` its duration from the P3 value `value`, by its band: a factor of the rhythm (below
// 200), the rhythm plus (200), the rhythm less (300), beats (400), seconds (1000). May warn (1).
// Two draws: RD, then DV.
void durationStep(Generation &making, SourceReader &source, EventRecord &event, float value);

// Stores `value` in `event` for the present p-field, P4 or above, deviated, rounded to whole
// semitones where the input mode is NO or OP without quarter tones, times PF. Returns the value
// before PF. One draw.
inline float parameterStep(Generation &making, EventRecord &event, float value) {
  value =
      deviate(making.global.random, value, making.global.settings.rd + making.global.settings.dv);
  bool isPitch = making.pfield.inputMode == kNO || making.pfield.inputMode == kOP;
  if (isPitch && !making.global.name.quarterTones) {
    value = roundHalfUp(value);
  }
  valuesOf(event)[making.pfield.number - 4] = value * making.global.settings.pf;
  return value;
}

// The one way of a value that stands in the text, is repeated, replayed or held: through the step
// of its p-field. In NO mode from P4 on a negative value (a rest) negates the event's duration.
// Errors 32, 54.
ErrorCode applyValue(Generation &making, SourceReader &source, float value);

}  // namespace korvo
