// The arguments of all kinds have one shape: a span, then segments of a percentage and what the
// kind makes of the rest. The values have one way too: in P2 each makes an event, from P3 on each
// goes to the next event. Draws for each event: the segment, the kind's own, then those of the
// value step.
#include "ddf/call.h"

#include <cmath>

#include "ddf/arguments.h"
#include "ddf/draw.h"
#include "ddf/loops.h"
#include "ddf/value_steps.h"
#include "driver/run_state.h"
#include "global/arithmetic.h"
#include "reader/lexical.h"
#include "reader/numbers.h"

namespace {

ErrorCode readSegment(RunState &run, SourceReader &source, const Generator &generator,
                      Segment &segment) {
  if (generator.percentageMissing != kOk) {
    if (!read_float(segment.percentage, source.line, source.position)) {
      return generator.percentageMissing;
    }
    ErrorCode error = skip_separator(run, source);
    if (error > 0) {
      return error;
    }
  }
  ErrorCode error = generator.readSegment(run, source, segment);
  if (error <= 0) {
    error = skip_separator(run, source);
  }
  if (error <= 0 && generator.checkSegment != nullptr) {
    error = generator.checkSegment(run, segment);
  }
  return error;
}

ErrorCode readSegments(RunState &run, SourceReader &source, const Generator &generator) {
  SegmentTable &table = run.segments;
  while (table.count < kMaxSegments) {
    Segment &segment = table.segments[table.count];
    segment = Segment{};
    ErrorCode error = readSegment(run, source, generator, segment);
    if (error > 0) {
      return error;
    }
    ++table.count;
    if (current(source) == ')') {
      ++source.position;
      return kOk;
    }
    if (generator.percentageMissing == kOk) {
      return kHoldNotClosed;
    }
  }
  return kOutOfMemory;
}

ErrorCode checkPercentages(const SegmentTable &table) {
  float sum = 0.0F;
  for (int i = 0; i < table.count; ++i) {
    sum += table.segments[i].percentage;
  }
  double exact = static_cast<double>(sum);
  return exact > 0.99999 && exact < 1.00001 ? kOk : kBadPercentageSum;
}

std::int64_t eventsOfSpan(float span) { return toInt64(static_cast<double>(std::fabs(span))); }

// P2: every value makes an event, until the span is over or the block is full.
ErrorCode makeEvents(RunState &run, const SourceReader &source, const Generator &generator) {
  float span = run.segments.span;
  Moment moment;
  moment.inBeats = !(span < 0.0F);
  moment.length = span;
  moment.count = moment.inBeats ? 0 : eventsOfSpan(span);
  if (!moment.inBeats && exceedsBlock(run, moment.count)) {
    return kOutOfMemory;
  }
  for (; moment.inBeats ? moment.elapsed < span : moment.index < moment.count; ++moment.index) {
    if (blockIsFull(run)) {
      truncateData(run, source);
      return kOk;
    }
    float value = 0.0F;
    ErrorCode error = generator.value(run, chooseSegment(run.segments), moment, value);
    if (error > 0) {
      return error;
    }
    run.pfield.lastValue = value;
    error = startStep(run, value, ZeroInterval::kAllowed);
    if (error > 0) {
      return error;
    }
    if (!recordValue(run.pfield, value)) {
      return kOutOfMemory;
    }
    moment.elapsed += run.block.lastRhythm;
  }
  return kOk;
}

// The value's way to its event, from P3 on.
ErrorCode storeValue(RunState &run, const SourceReader &source, EventRecord &event, float value) {
  if (run.pfield.inputMode == kIN) {
    value = roundHalfUp(value);
  }
  run.pfield.lastValue = value;
  if (run.pfield.number == 3) {
    durationStep(run, source, event, value);
  } else {
    value = parameterStep(run, event, value);
  }
  return recordValue(run.pfield, value) ? kOk : kOutOfMemory;
}

// P3 and above: every value goes to the next event of the span.
ErrorCode fillEvents(RunState &run, const SourceReader &source, const Generator &generator) {
  ErrorCode error = insertPending(run);
  if (error > 0) {
    return error;
  }
  Extent extent = measureExtent(run, source);
  Moment moment;
  moment.count = extent.count;
  moment.length =
      extent.lastBeat +
      extent.firstBeat;  // the sum is what a "*" curve runs over, wherever the call begins
  for (; moment.index < moment.count; ++moment.index) {
    if (blockIsFull(run)) {
      truncateData(run, source);
      return kOk;
    }
    Segment &segment = chooseSegment(run.segments);
    EventRecord *event = nullptr;
    error = nextEvent(run, event);
    if (error > 0) {
      return error;
    }
    moment.event = event;
    moment.elapsed = event->beat - extent.firstBeat;
    float value = 0.0F;
    error = generator.value(run, segment, moment, value);
    if (error > 0) {
      return error;
    }
    error = storeValue(run, source, *event, value);
    if (error > 0) {
      return error;
    }
  }
  return kOk;
}

struct Setting {
  CommandCode name;
  ErrorCode (*read)(RunState &, SourceReader &);
};

constexpr Setting kSettings[] = {
    {kDV, readDV}, {kPF, readPF}, {kRD, readRD}, {kRS, readRS}, {kSR, readSR}, {kS2, runS2},
};

}  // namespace

ErrorCode dispatchDdf(RunState &run, SourceReader &source, CommandCode command) {
  for (const Setting &setting : kSettings) {
    if (setting.name == command) {
      return setting.read(run, source);
    }
  }
  const Generator *generator = findGenerator(command);
  if (generator == nullptr) {
    return kInvalidCommand;
  }
  ErrorCode error = readCall(run, source, *generator);
  if (error > 0) {
    return error;
  }
  return run.pfield.number == 2 ? makeEvents(run, source, *generator)
                                : fillEvents(run, source, *generator);
}

ErrorCode readCall(RunState &run, SourceReader &source, const Generator &generator) {
  clearSegments(run.segments);
  ErrorCode error = generator.begin != nullptr ? generator.begin(run, source) : kOk;
  if (error <= 0) {
    error = readSpan(run, source, run.segments.span);
  }
  if (error <= 0) {
    error = readSegments(run, source, generator);
  }
  if (error > 0) {
    return error;
  }
  return generator.percentageMissing != kOk ? checkPercentages(run.segments) : kOk;
}

Extent measureExtent(RunState &run, const SourceReader &source) {
  float span = run.segments.span;
  Extent extent;
  if (span < 0.0F) {
    extent.count = eventsOfSpan(span);
    return extent;
  }
  if (blockIsFull(run)) {
    return extent;
  }
  std::uint32_t event = peekNextEvent(run);
  extent.firstBeat = eventAt(run.events, event).beat;
  extent.lastBeat = extent.firstBeat;
  float end = extent.firstBeat + span;
  std::int64_t left = run.block.target - run.pfield.filled;
  for (; extent.count < left && eventAt(run.events, event).beat <= end; ++extent.count) {
    extent.lastBeat = eventAt(run.events, event).beat;
    event = eventAt(run.events, event).next;
  }
  // A length is compared with a time, and the five are beats of nothing in particular; composers
  // know when it warns.
  bool overshoots = static_cast<double>(span) - 5.0 > static_cast<double>(extent.lastBeat);
  if (overshoots && !run.options.silent) {
    warn(run, source, kDurationAltered);
    say(run.screen, "Old duration = %f, New duration = %f\n", {span, extent.lastBeat});
  }
  return extent;
}

// Running sums in single precision; the first one that is not below the draw decides. Should
// rounding leave the draw above them all, it is the last segment.
Segment &chooseSegment(SegmentTable &table) {
  float u = drawUnit();
  float sum = table.segments[0].percentage;
  int chosen = 0;
  while (sum < u && chosen < table.count - 1) {
    sum += table.segments[++chosen].percentage;
  }
  return table.segments[chosen];
}

void truncateData(RunState &run, const SourceReader &source) {
  warn(run, source, kDataTruncated);
  run.pfield.blockEnd = true;
}
