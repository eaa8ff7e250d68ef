// The kinds of data functions that fill events one by one: RA, RW, MO, SE, EX, MS and HO. A kind is
// a row: how one segment of its arguments is read, and what value it gives at an event. A new kind
// is a file with these two functions and a row in generator_table.cc.
#pragma once

#include <cstdint>

#include "base/error_code.h"
#include "ddf/event_list.h"
#include "ddf/segment_table.h"
#include "reader/names.h"

namespace korvo {

struct Generation;
struct SourceReader;

// Where in the call a value is wanted.
struct Moment {
  std::int64_t index = 0;  // events before this one in the call
  std::int64_t count = 0;  // events of the call, where that is known beforehand
  bool inBeats = false;    // P2 with a span in beats: curves follow `elapsed`
  float elapsed = 0.0F;    // beats or seconds since the call's first event
  float length = 0.0F;     // what `elapsed` grows towards
  // The event to be filled; null in P2, which has yet to make it.
  const EventRecord *event = nullptr;
};

struct Generator {
  CommandCode name;
  // The error when a segment has no percentage; kOk for a kind without percentages, which has a
  // single segment.
  ErrorCode percentageMissing;
  // What is checked before anything is read; null for nothing.
  ErrorCode (*begin)(Generation &making, SourceReader &source);
  // Reads what stands behind a segment's percentage and separator.
  ErrorCode (*readSegment)(Generation &making, SourceReader &source, Segment &segment);
  // What is checked when the separator behind a segment has been read; null for nothing.
  ErrorCode (*checkSegment)(const Generation &making, const Segment &segment);
  // The value of `segment` at this moment.
  ErrorCode (*value)(Generation &making, Segment &segment, const Moment &moment, float &value);
};

// The generator with that name, or null.
const Generator *findGenerator(CommandCode name);

// RA, a random range. Draws as drawFromRange. Errors 37, 39, 41, 72.
ErrorCode readRandomSegment(Generation &making, SourceReader &source, Segment &segment);
ErrorCode randomValue(Generation &making, Segment &segment, const Moment &moment, float &value);

// RW, a random walk. Draws again until the new position lies in the window; one draw for a window
// that is nearly nothing. Errors 50, 51, 52.
ErrorCode readWalkSegment(Generation &making, SourceReader &source, Segment &segment);
ErrorCode walkValue(Generation &making, Segment &segment, const Moment &moment, float &value);

// MO, a range that moves to a second one. Draws from the first, then from the second. Errors 37,
// 39, 41, 63, 64, 72.
ErrorCode readMoveSegment(Generation &making, SourceReader &source, Segment &segment);
ErrorCode checkMoveSegment(const Generation &making, const Segment &segment);
ErrorCode moveValue(Generation &making, Segment &segment, const Moment &moment, float &value);

// SE, a selection from a list. One draw, in the modes "*" and "x" again until it fits. Errors 32,
// 39, 41.
ErrorCode readSelectSegment(Generation &making, SourceReader &source, Segment &segment);
ErrorCode selectValue(Generation &making, Segment &segment, const Moment &moment, float &value);

// EX, an expression over p-fields. No draws. Errors 16, 23, 32, 55, 57, 58, 59 when it is read, 60
// at an event.
ErrorCode beginExpression(Generation &making, SourceReader &source);
ErrorCode readExpressionSegment(Generation &making, SourceReader &source, Segment &segment);
ErrorCode checkExpressionSegment(const Generation &making, const Segment &segment);
ErrorCode expressionValue(Generation &making, Segment &segment, const Moment &moment, float &value);

// MS, a choice between two lists whose odds move. Two draws: which list, which value. Errors 32,
// 39, 41, 63, 64.
ErrorCode readTwoListSegment(Generation &making, SourceReader &source, Segment &segment);
ErrorCode twoListValue(Generation &making, Segment &segment, const Moment &moment, float &value);

// HO, a held value. No draws of its own. Error 52.
ErrorCode readHoldSegment(Generation &making, SourceReader &source, Segment &segment);
ErrorCode holdValue(Generation &making, Segment &segment, const Moment &moment, float &value);

}  // namespace korvo
