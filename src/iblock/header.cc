// Items are read one after another by a function each; the first that is missing gives its own
// error.
#include "iblock/header.h"

#include <cstdint>
#include <limits>

#include "ddf/value_steps.h"
#include "driver/run_state.h"
#include "reader/characters.h"
#include "reader/lexical.h"
#include "reader/numbers.h"

namespace {

constexpr int kManyPfieldsFrom = 51;
constexpr float kLateStartTime = 240.0F;    // seconds
constexpr float kLongLength = 600.0F;       // beats
constexpr float kLongestLength = 10000.0F;  // beats
constexpr int kSeparatorsBetweenItems = 4;

bool isBlockEnd(const char *text) { return *text == '}'; }

// Up to four separators may stand between two items of a header.
ErrorCode skipSeparators(RunState &run, SourceReader &source) {
  for (int i = 0; i < kSeparatorsBetweenItems; ++i) {
    ErrorCode error = skip_separator(run, source);
    if (error > 0) {
      return error;
    }
  }
  return kOk;
}

ErrorCode readInstrument(RunState &run, SourceReader &source) {
  ++source.position;
  ErrorCode error = skip_blanks_and_comments(run, source);
  if (error > 0) {
    return error;
  }
  bool begins = current(source) == '-' || isDigit(current(source));
  std::int64_t number = 0;
  if (!begins || !read_long(number, source.line, source.position) ||
      number < std::numeric_limits<std::int32_t>::min() ||
      number > std::numeric_limits<std::int32_t>::max()) {
    return kBadINumber;
  }
  run.block.header.instrument = static_cast<std::int32_t>(number);
  return kOk;
}

// A block with a negative instrument number is passed over as a whole.
ErrorCode skipBlock(RunState &run, SourceReader &source) {
  ErrorCode error = skipTo(run, source, isBlockEnd);
  if (error > 0) {
    return error;
  }
  next_char(source);
  return kEndOfInput;
}

ErrorCode readPfieldCount(RunState &run, SourceReader &source) {
  ErrorCode error = skip_blanks_and_comments(run, source);
  if (error > 0) {
    return error;
  }
  if (current(source) != '=') {
    return kMissingEquals;
  }
  ++source.position;
  error = skip_blanks_and_comments(run, source);
  if (error > 0) {
    return error;
  }
  std::int64_t count = 0;
  if (!read_long(count, source.line, source.position)) {
    return kBadPfieldCount;
  }
  if (count < kMinPfields || count > kMaxPfields) {
    say(run.screen, "\n\nERROR: Bad number of p-fields (3 - %d)\n", {kMaxPfields});
    return kContextOnly;
  }
  if (count >= kManyPfieldsFrom) {
    warn(run, source, kManyPfields);
  }
  run.block.header.pfieldCount = static_cast<std::int32_t>(count);
  return kOk;
}

ErrorCode readStart(RunState &run, SourceReader &source) {
  ErrorCode error = skipSeparators(run, source);
  if (error > 0) {
    return error;
  }
  float start = 0.0F;
  if (!read_float(start, source.line, source.position) || start < 0.0F) {
    return kBadStartTime;
  }
  if (start > kLateStartTime) {
    warn(run, source, kLateStart);
  }
  run.block.header.start = start;
  return kOk;
}

ErrorCode readEventCount(RunState &run, SourceReader &source) {
  ++source.position;
  std::uint64_t count = 0;
  if (!read_ulong(count, source.line, source.position)) {
    return kBadEvents;
  }
  constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
  run.block.target = static_cast<std::int64_t>(count < kMost ? count : kMost);
  run.block.header.length = -static_cast<float>(run.block.target);
  return kOk;
}

ErrorCode readBeats(RunState &run, SourceReader &source) {
  float beats = 0.0F;
  if (!read_float(beats, source.line, source.position) || beats < 0.0F) {
    return kBadBeats;
  }
  run.block.target = 0;
  run.block.header.length = beats;
  if (beats > kLongestLength) {
    say(run.screen, "\n\nERROR: Line %d: Maximum number of beats = %s\n",
        {source.lineCounter, "10000.000000"});
    return kContextOnly;
  }
  if (beats > kLongLength) {
    warn(run, source, kLongDuration);
  }
  return kOk;
}

ErrorCode readLength(RunState &run, SourceReader &source) {
  ErrorCode error = skipSeparators(run, source);
  if (error > 0) {
    return error;
  }
  char c = current(source);
  if (c == '-') {
    return readEventCount(run, source);
  }
  if (isDigit(c) || c == '.' || c == '+') {
    return readBeats(run, source);
  }
  return c == '{' ? kLengthMissing : kBadLength;
}

void beginBlock(RunState &run) {
  for (PfieldFormat &format : run.block.pfields) {
    format = PfieldFormat{};
  }
  releaseEvents(run.events);
  beginEvents(run.events, run.block.header.pfieldCount - kMinPfields);
  startClock(run);
  beginProgress(run);
}

}  // namespace

ErrorCode parseHeader(RunState &run, SourceReader &source) {
  ErrorCode error = readInstrument(run, source);
  if (error > 0) {
    return error;
  }
  if (run.block.header.instrument < 0) {
    return skipBlock(run, source);
  }
  constexpr ErrorCode (*kItems[])(RunState &, SourceReader &) = {readPfieldCount, readStart,
                                                                 readLength, skipSeparators};
  for (auto readItem : kItems) {
    error = readItem(run, source);
    if (error > 0) {
      return error;
    }
  }
  if (current(source) != '{') {
    return kMissingBlockStart;
  }
  ++source.position;
  beginBlock(run);
  return kOk;
}
