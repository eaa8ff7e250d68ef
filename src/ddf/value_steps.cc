// The heart of the program: a value comes in, an event has it. What a user would notice is decided
// here: where an event starts, when a block is full, how far a value strays, what a duration code
// means. A block whose target is 0 is measured in beats and has no number of events yet: in P2 its
// clock decides when it is full. From P3 on every block has a target.
#include "ddf/value_steps.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "ddf/draw.h"
#include "driver/run_state.h"
#include "global/arithmetic.h"

namespace {

constexpr int kMostStuckEvents = 65536;

// A value spread by a fraction of itself around itself. One draw.
float deviate(float value, float fraction) {
  float u = drawUnit();
  float d = value * fraction;
  return value - d / 2.0F + d * u;
}

bool isMeasuredInBeats(const RunState &run) { return run.block.target == 0; }

void countEvent(RunState &run) {
  ++run.pfield.filled;
  run.pfield.dataSeen = true;
  if (countProgress(run.progress)) {
    char stage[16];
    std::snprintf(stage, sizeof stage, "P%d", run.pfield.number);
    drawProgress(run, stage, run.pfield.filled);
  }
}

// Where the new event starts: with the event before it when that was asked for, else behind it.
void placeEvent(RunState &run, std::uint32_t made) {
  EventRecord &event = eventAt(run.events, made);
  BlockState &block = run.block;
  if (run.pfield.cursor == kNoEvent) {
    event.start = block.header.start;
    event.beat = run.tempo.beat;
  } else if (run.pfield.insertRequest) {
    const EventRecord &previous = eventAt(run.events, run.pfield.cursor);
    run.pfield.inserted = made;
    event.flag = 1;
    event.start = previous.start;
    event.beat = previous.beat;
  } else {
    event.start = block.lastStart + block.lastRhythm;
    event.beat = run.tempo.beat;
  }
  run.pfield.insertRequest = false;
}

// Moves the beat clock; error 54 when it has stood still for too long in a block that ends by the
// clock.
ErrorCode moveClock(RunState &run, float beats) {
  float moved = run.tempo.beat + std::fabs(beats);
  bool stuck = isMeasuredInBeats(run) && !(moved > run.tempo.beat);
  run.block.stuckEvents = stuck ? run.block.stuckEvents + 1 : 0;
  run.tempo.beat = moved;
  return run.block.stuckEvents > kMostStuckEvents ? kZeroInterval : kOk;
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

bool blockIsFull(const RunState &run) {
  return isMeasuredInBeats(run) ? run.tempo.beat >= run.block.endBeat
                                : run.pfield.filled >= run.block.target;
}

bool exceedsBlock(const RunState &run, std::int64_t more) {
  std::int64_t wanted = std::min(more, run.block.target - run.pfield.filled);
  return !isMeasuredInBeats(run) &&
         wanted > static_cast<std::int64_t>(kMaxEvents - run.events.count);
}

void startClock(RunState &run) {
  const IBlockHeader &header = run.block.header;
  float startBeat = TempoAtBeat(run.tempo, header.start) / 60.0F * header.start;
  run.tempo.beat = startBeat;
  run.block.endBeat = startBeat + header.length;
  run.block.stuckEvents = 0;
}

ErrorCode startStep(RunState &run, float value, ZeroInterval zero) {
  float seconds = BeatsToSeconds(run, value);
  if (zero == ZeroInterval::kError && isMeasuredInBeats(run) && seconds == 0.0F) {
    return kZeroInterval;
  }
  float rhythm = deviate(seconds, run.settings.rd + run.settings.dv);
  std::uint32_t made = run.events.count < kMaxEvents ? makeEvent(run.events) : kNoEvent;
  if (made == kNoEvent) {
    return kOutOfMemory;
  }
  EventRecord &event = eventAt(run.events, made);
  placeEvent(run, made);
  event.duration = rhythm;
  appendEvent(run.events, made);
  run.pfield.cursor = made;
  run.block.lastStart = event.start;
  run.block.lastRhythm = std::fabs(rhythm);
  countEvent(run);
  return moveClock(run, value);
}

std::uint32_t peekNextEvent(const RunState &run) {
  std::uint32_t cursor = run.pfield.cursor;
  return cursor == kNoEvent ? firstEvent(run.events) : eventAt(run.events, cursor).next;
}

ErrorCode insertPending(RunState &run) {
  if (!run.pfield.insertRequest) {
    return kOk;
  }
  run.pfield.insertRequest = false;
  run.pfield.inserted = copyEventBehind(run.events, run.pfield.cursor);
  if (run.pfield.inserted == kNoEvent) {
    return kOutOfMemory;
  }
  eventAt(run.events, run.pfield.inserted).flag = 1;
  return kOk;
}

ErrorCode nextEvent(RunState &run, EventRecord *&event) {
  ErrorCode error = insertPending(run);
  if (error > 0) {
    return error;
  }
  run.pfield.cursor = peekNextEvent(run);
  event = &eventAt(run.events, run.pfield.cursor);
  countEvent(run);
  return kOk;
}

void durationStep(RunState &run, const SourceReader &source, EventRecord &event, float value) {
  float magnitude = std::fabs(value);
  float code = durationCode(magnitude);
  float x = std::copysign(magnitude - code, value);
  x = deviate(x, run.settings.rd);
  x = deviate(x, run.settings.dv);
  float rhythm = event.duration;
  float duration = x;  // seconds
  if (code == 0.0F) {
    duration = x * rhythm;
  } else if (code == 200.0F) {
    duration = x + rhythm;
  } else if (code == 300.0F) {
    if (x < rhythm) {  // the reverse of what the warning says; composers know it this way round
      warn(run, source, kDurationBelowZero);
    }
    duration = rhythm - x;
  } else if (code == 400.0F) {
    duration = x * (60.0F / run.tempo.current);
  }
  event.duration = duration * run.settings.pf;
}

float parameterStep(RunState &run, EventRecord &event, float value) {
  value = deviate(value, run.settings.rd + run.settings.dv);
  bool isPitch = run.pfield.inputMode == kNO || run.pfield.inputMode == kOP;
  if (isPitch && !run.name.quarterTones) {
    value = roundHalfUp(value);
  }
  valuesOf(event)[run.pfield.number - 4] = value * run.settings.pf;
  return value;
}

ErrorCode applyValue(RunState &run, const SourceReader &source, float value) {
  if (run.pfield.number == 2) {
    return startStep(run, value, ZeroInterval::kError);
  }
  EventRecord *event = nullptr;
  ErrorCode error = nextEvent(run, event);
  if (error > 0) {
    return error;
  }
  if (run.pfield.number == 3) {
    durationStep(run, source, *event, value);
    return kOk;
  }
  if (run.pfield.inputMode == kNO && value < 0.0F) {
    event->duration = -event->duration;
  }
  parameterStep(run, *event, value);
  return kOk;
}
