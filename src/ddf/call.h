// A call of a data function: its arguments read, and its values given to the events of its span.
#pragma once

#include <cstdint>

#include "base/error_code.h"
#include "ddf/generator.h"
#include "reader/names.h"

namespace korvo {

struct Generation;
struct Random;
struct SourceReader;

// The events that a call fills.
struct Extent {
  std::int64_t count = 0;
  float firstBeat = 0.0F;  // the beat position of the first of them, and of the last
  float lastBeat = 0.0F;
};

// Runs whatever stands in a p-field under a name that is no input mode: a setting, S2 or one of the
// generators. Error 20 for a name that is none of these; otherwise the errors of each.
ErrorCode dispatchDdf(Generation &making, SourceReader &source, CommandCode command);

// Reads a call into the segment table, from behind its name to behind its ")", and checks that the
// percentages add up. Errors 32 (also for a 129th segment), 36, 40, 42, 53, 61, the generator's
// own, and those of `read_line`.
ErrorCode readCall(Generation &making, SourceReader &source, const Generator &generator);

// Measures the span of a call from P3 on, from the event behind the one filled last. A span in
// beats ends with the last event whose beat position is not later than the first one's plus the
// span. May warn (14).
Extent measureExtent(Generation &making, SourceReader &source);

// Draws the segment that an event's value comes from. One draw, also when there is only one
// segment.
Segment &chooseSegment(SegmentTable &table, Random &random);

// Warns (11) and marks the rest of the p-field for skipping.
void truncateData(Generation &making, SourceReader &source);

// S2, the grouped selection; from P4 on. Draws for each event: the segment, the group (as SE), then
// one for each value of the group. Errors 32, 38, 39, 41, 42, 62, 97 and those of the span.
ErrorCode runS2(Generation &making, SourceReader &source);

}  // namespace korvo
