// The arguments of all kinds have one shape: a span, then segments of a percentage and what the
// kind makes of the rest. The values have one way too: in P2 each makes an event, from P3 on each
// goes to the next event. Draws for each event: the segment, the kind's own, then those of the
// value step.
#include "ddf/call.h"

#include <cmath>

#include "base/arithmetic.h"
#include "base/numbers.h"
#include "base/random.h"
#include "ddf/arguments.h"
#include "ddf/generation.h"
#include "ddf/loops.h"
#include "ddf/value_steps.h"
#include "preproc/source_reader.h"
#include "reader/lexical.h"

namespace korvo {

namespace {

ErrorCode readSegment(Generation &making, SourceReader &source, const Generator &generator,
                      Segment &segment) {
  if (generator.percentageMissing != kOk) {
    if (!read_float(segment.percentage, source.line, source.position)) {
      return generator.percentageMissing;
    }
    RETURN_IF_ERROR(skip_separator(source));
  }
  RETURN_IF_ERROR(generator.readSegment(making, source, segment));
  RETURN_IF_ERROR(skip_separator(source));
  return generator.checkSegment != nullptr ? generator.checkSegment(making, segment) : kOk;
}

ErrorCode readSegments(Generation &making, SourceReader &source, const Generator &generator) {
  SegmentTable &table = making.segments;
  while (table.count < kMaxSegments) {
    Segment &segment = table.segments[table.count];
    segment = Segment{};
    RETURN_IF_ERROR(readSegment(making, source, generator, segment));
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
ErrorCode makeEvents(Generation &making, SourceReader &source, const Generator &generator) {
  float span = making.segments.span;
  Moment moment;
  moment.inBeats = !(span < 0.0F);
  moment.length = span;
  moment.count = moment.inBeats ? 0 : eventsOfSpan(span);
  if (!moment.inBeats && exceedsBlock(making, moment.count)) {
    return kOutOfMemory;
  }
  for (; moment.inBeats ? moment.elapsed < span : moment.index < moment.count; ++moment.index) {
    if (blockIsFull(making)) {
      truncateData(making, source);
      return kOk;
    }
    float value = 0.0F;
    RETURN_IF_ERROR(generator.value(making, chooseSegment(making.segments, making.global.random),
                                    moment, value));
    making.pfield.lastValue = value;
    RETURN_IF_ERROR(startStep(making, value, ZeroInterval::kAllowed));
    if (!recordValue(making.pfield, value)) {
      return kOutOfMemory;
    }
    moment.elapsed += making.block.lastRhythm;
  }
  return kOk;
}

// The value's way to its event, from P3 on.
ErrorCode storeValue(Generation &making, SourceReader &source, EventRecord &event, float value) {
  if (making.pfield.inputMode == kIN) {
    value = roundHalfUp(value);
  }
  making.pfield.lastValue = value;
  if (making.pfield.number == 3) {
    durationStep(making, source, event, value);
  } else {
    value = parameterStep(making, event, value);
  }
  return recordValue(making.pfield, value) ? kOk : kOutOfMemory;
}

// P3 and above: every value goes to the next event of the span.
ErrorCode fillEvents(Generation &making, SourceReader &source, const Generator &generator) {
  RETURN_IF_ERROR(insertPending(making));
  Extent extent = measureExtent(making, source);
  Moment moment;
  moment.count = extent.count;
  // The sum is what a "*" curve runs over, wherever the call begins.
  moment.length = extent.lastBeat + extent.firstBeat;
  for (; moment.index < moment.count; ++moment.index) {
    if (blockIsFull(making)) {
      truncateData(making, source);
      return kOk;
    }
    Segment &segment = chooseSegment(making.segments, making.global.random);
    EventRecord *event = nullptr;
    RETURN_IF_ERROR(nextEvent(making, event));
    moment.event = event;
    moment.elapsed = event->beat - extent.firstBeat;
    float value = 0.0F;
    RETURN_IF_ERROR(generator.value(making, segment, moment, value));
    RETURN_IF_ERROR(storeValue(making, source, *event, value));
  }
  return kOk;
}

struct Setting {
  CommandCode name;
  ErrorCode (*read)(Generation &, SourceReader &);
};

// clang-format off
constexpr Setting kSettings[] = {
    {kDV, [](Generation &making, SourceReader &source) { return readDV(source, making.global.settings); }},
    {kPF, [](Generation &making, SourceReader &source) { return readPF(source, making.global.settings, making.pfield.number); }},
    {kRD, [](Generation &making, SourceReader &source) { return readRD(source, making.global.settings); }},
    {kRS, [](Generation &making, SourceReader &source) { return readRS(source, making.global.random); }},
    {kSR, [](Generation &making, SourceReader &source) { return readSR(source, making.global.settings); }},
    {kS2, runS2},
};
// clang-format on

}  // namespace

ErrorCode dispatchDdf(Generation &making, SourceReader &source, CommandCode command) {
  for (const Setting &setting : kSettings) {
    if (setting.name == command) {
      return setting.read(making, source);
    }
  }
  const Generator *generator = findGenerator(command);
  if (generator == nullptr) {
    return kInvalidCommand;
  }
  RETURN_IF_ERROR(readCall(making, source, *generator));
  return making.pfield.number == 2 ? makeEvents(making, source, *generator)
                                   : fillEvents(making, source, *generator);
}

ErrorCode readCall(Generation &making, SourceReader &source, const Generator &generator) {
  clearSegments(making.segments);
  if (generator.begin != nullptr) {
    RETURN_IF_ERROR(generator.begin(making, source));
  }
  RETURN_IF_ERROR(readSpan(making, source, making.segments.span));
  RETURN_IF_ERROR(readSegments(making, source, generator));
  return generator.percentageMissing != kOk ? checkPercentages(making.segments) : kOk;
}

Extent measureExtent(Generation &making, SourceReader &source) {
  float span = making.segments.span;
  Extent extent;
  if (span < 0.0F) {
    extent.count = eventsOfSpan(span);
    return extent;
  }
  if (blockIsFull(making)) {
    return extent;
  }
  std::uint32_t event = peekNextEvent(making);
  extent.firstBeat = eventAt(making.events, event).beat;
  extent.lastBeat = extent.firstBeat;
  float end = extent.firstBeat + span;
  std::int64_t left = making.block.target - making.pfield.filled;
  for (; extent.count < left && eventAt(making.events, event).beat <= end; ++extent.count) {
    extent.lastBeat = eventAt(making.events, event).beat;
    event = eventAt(making.events, event).next;
  }
  // A length is compared with a time, and the five are beats of nothing in particular; composers
  // know when it warns.
  bool overshoots = static_cast<double>(span) - 5.0 > static_cast<double>(extent.lastBeat);
  if (overshoots && !making.messages->silent) {
    warn(source, kDurationAltered);
    say(*making.messages, "Old duration = %f, New duration = %f\n", {span, extent.lastBeat});
  }
  return extent;
}

// Running sums in single precision; the first one that is not below the draw decides. Should
// rounding leave the draw above them all, it is the last segment.
Segment &chooseSegment(SegmentTable &table, Random &random) {
  float u = drawUnit(random);
  float sum = table.segments[0].percentage;
  int chosen = 0;
  while (sum < u && chosen < table.count - 1) {
    sum += table.segments[++chosen].percentage;
  }
  return table.segments[chosen];
}

void truncateData(Generation &making, SourceReader &source) {
  warn(source, kDataTruncated);
  making.pfield.blockEnd = true;
}

}  // namespace korvo
