// The heart of the program: a value comes in, an event has it. What a user would notice is decided
// here: where an event starts, when a block is full, how far a value strays, what a duration code
// means. A block whose target is 0 is measured in beats and has no number of events yet: in P2 its
// clock decides when it is full. From P3 on every block has a target.
#include "ddf/value_steps.h"

#include <algorithm>
#include <cmath>

#include "base/arithmetic.h"
#include "base/number_format.h"
#include "base/progress.h"
#include "base/random.h"
#include "ddf/generation.h"
#include "preproc/source_reader.h"

namespace korvo {

namespace {

constexpr int kMostStuckEvents = 65536;

// Where the new event starts: with the event before it when that was asked for, else behind it.
void placeEvent(Generation &making, std::uint32_t made) {
  EventRecord &event = eventAt(making.events, made);
  BlockState &block = making.block;
  if (making.pfield.cursor == kNoEvent) {
    event.start = block.header.start;
    event.beat = making.global.tempo.beat;
  } else if (making.pfield.insertRequest) {
    const EventRecord &previous = eventAt(making.events, making.pfield.cursor);
    making.pfield.inserted = made;
    event.flag = 1;
    event.start = previous.start;
    event.beat = previous.beat;
  } else {
    event.start = block.lastStart + block.lastRhythm;
    event.beat = making.global.tempo.beat;
  }
  making.pfield.insertRequest = false;
}

// Moves the beat clock; error 54 when it has stood still for too long in a block that ends by the
// clock.
ErrorCode moveClock(Generation &making, float beats) {
  float moved = making.global.tempo.beat + std::fabs(beats);
  bool stuck = isMeasuredInBeats(making) && !(moved > making.global.tempo.beat);
  making.block.stuckEvents = stuck ? making.block.stuckEvents + 1 : 0;
  making.global.tempo.beat = moved;
  return making.block.stuckEvents > kMostStuckEvents ? kZeroInterval : kOk;
}

// The bands of P3: the code that a magnitude belongs to.
float durationCode(float magnitude) {
  if (magnitude < 200.0F) {
    return 0.0F;
  }
  if (magnitude < 300.0F) {
    return 200.0F;
  }
  if (magnitude < 400.0F) {
    return 300.0F;
  }
  return magnitude < 1000.0F ? 400.0F : 1000.0F;
}

}  // namespace

bool exceedsBlock(const Generation &making, std::int64_t more) {
  std::int64_t wanted = std::min(more, making.block.target - making.pfield.filled);
  return !isMeasuredInBeats(making) &&
         wanted > static_cast<std::int64_t>(kMaxEvents - making.events.count);
}

void tellValues(const Generation &making) {
  char stage[16] = "P";
  *writeInteger(stage + 1, making.pfield.number, 0) = '\0';
  tellProgress(making, stage, making.pfield.filled);
}

void startClock(Generation &making) {
  const IBlockHeader &header = making.block.header;
  float startBeat = TempoAtBeat(making.global.tempo, header.start) / 60.0F * header.start;
  making.global.tempo.beat = startBeat;
  making.block.endBeat = startBeat + header.length;
  making.block.stuckEvents = 0;
}

ErrorCode startStep(Generation &making, float value, ZeroInterval zero) {
  float seconds = BeatsToSeconds(making.global.tempo, *making.messages, value);
  if (zero == ZeroInterval::kError && isMeasuredInBeats(making) && seconds == 0.0F) {
    return kZeroInterval;
  }
  float rhythm =
      deviate(making.global.random, seconds, making.global.settings.rd + making.global.settings.dv);
  std::uint32_t made = making.events.count < kMaxEvents ? makeEvent(making.events) : kNoEvent;
  if (made == kNoEvent) {
    return kOutOfMemory;
  }
  EventRecord &event = eventAt(making.events, made);
  placeEvent(making, made);
  event.duration = rhythm;
  appendEvent(making.events, made);
  making.pfield.cursor = made;
  making.block.lastStart = event.start;
  making.block.lastRhythm = std::fabs(rhythm);
  countEvent(making);
  return moveClock(making, value);
}

ErrorCode insertCopy(Generation &making) {
  making.pfield.insertRequest = false;
  making.pfield.inserted = copyEventBehind(making.events, making.pfield.cursor);
  if (making.pfield.inserted == kNoEvent) {
    return kOutOfMemory;
  }
  eventAt(making.events, making.pfield.inserted).flag = 1;
  return kOk;
}

void durationStep(Generation &making, SourceReader &source, EventRecord &event, float value) {
  float magnitude = std::fabs(value);
  float code = durationCode(magnitude);
  float x = std::copysign(magnitude - code, value);
  x = deviate(making.global.random, x, making.global.settings.rd);
  x = deviate(making.global.random, x, making.global.settings.dv);
  float rhythm = event.duration;
  float duration = x;  // seconds
  if (code == 0.0F) {
    duration = x * rhythm;
  } else if (code == 200.0F) {
    duration = x + rhythm;
  } else if (code == 300.0F) {
    if (x < rhythm) {  // the reverse of what the warning says; composers know it this way round
      warn(source, kDurationBelowZero);
    }
    duration = rhythm - x;
  } else if (code == 400.0F) {
    duration = x * (60.0F / making.global.tempo.current);
  }
  event.duration = duration * making.global.settings.pf;
}

ErrorCode applyValue(Generation &making, SourceReader &source, float value) {
  if (making.pfield.number == 2) {
    return startStep(making, value, ZeroInterval::kError);
  }
  EventRecord *event = nullptr;
  RETURN_IF_ERROR(nextEvent(making, event));
  if (making.pfield.number == 3) {
    durationStep(making, source, *event, value);
    return kOk;
  }
  if (making.pfield.inputMode == kNO && value < 0.0F) {
    event->duration = -event->duration;
  }
  parameterStep(making, *event, value);
  return kOk;
}

}  // namespace korvo
