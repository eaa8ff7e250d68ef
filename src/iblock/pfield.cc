// The text of a p-field is a run of items: mode names, data functions, comments, loop marks,
// separators, repeats, values.
#include "iblock/pfield.h"

#include <cstdint>

#include "ddf/call.h"
#include "ddf/input_modes.h"
#include "ddf/loops.h"
#include "ddf/value_steps.h"
#include "driver/run_state.h"
#include "output/output_kinds.h"
#include "reader/characters.h"
#include "reader/lexical.h"
#include "reader/names.h"
#include "reader/numbers.h"

namespace {

bool endsPfield(const char *text) { return *text == '}' || atPfield(text); }

// The output kind in the parentheses, the position behind the "(".
ErrorCode readOutputKind(RunState &run, SourceReader &source) {
  ErrorCode error = skip_blanks(run, source);
  if (error > 0) {
    return error;
  }
  if (!isOutputKindName(source.line + source.position) ||
      !lookupDdfName(source.line, source.position, run.name)) {
    return kBadOutputSpecifier;
  }
  if (run.pfield.number <= 3 && run.name.code != kRE) {
    return kMustOutputFloats;
  }
  PfieldFormat &format = run.block.pfields[run.pfield.number];
  format.kind = run.name.code;
  if (run.name.code == kRE) {
    format.precision = run.name.precision;
  } else if (run.name.code == kBN) {
    format.fftIndex = run.name.fftIndex;
  }
  error = skip_blanks(run, source);
  if (error > 0) {
    return error;
  }
  if (current(source) != ')') {
    return kMissingParenthesis;
  }
  ++source.position;
  return kOk;
}

ErrorCode readOutputSpecifier(RunState &run, SourceReader &source) {
  run.block.pfields[run.pfield.number] = PfieldFormat{};
  ErrorCode error = skip_blanks(run, source);
  if (error > 0 || current(source) != '(') {
    return error;
  }
  ++source.position;
  return readOutputKind(run, source);
}

// A mode name. "re" also sets the precision of the output, back to 3 without digits, whatever stood
// in parentheses.
ErrorCode changeMode(RunState &run, const InputMode &mode) {
  if (run.pfield.number == 3 && !mode.forDurations) {
    return kBadP3Input;
  }
  if (run.pfield.number == 2 && !mode.forStarts) {
    return kBadP2Input;
  }
  run.pfield.inputMode = mode.code;
  if (mode.code == kRE) {
    run.block.pfields[run.pfield.number].precision = run.name.precision;
  }
  return kOk;
}

ErrorCode readName(RunState &run, SourceReader &source) {
  if (!lookupDdfName(source.line, source.position, run.name)) {
    return kInvalidCommand;
  }
  const InputMode *mode = findInputMode(run.name.code);
  return mode != nullptr ? changeMode(run, *mode) : dispatchDdf(run, source, run.name.code);
}

// The last value again, `times` times.
ErrorCode repeatValue(RunState &run, const SourceReader &source, std::uint64_t times) {
  for (; times > 0; --times) {
    if (blockIsFull(run)) {
      warn(run, source, kRepeatTruncated);
      run.pfield.blockEnd = true;
      return kOk;
    }
    float value = run.pfield.lastValue;
    ErrorCode error = applyValue(run, source, value);
    if (error > 0) {
      return error;
    }
    if (!recordValue(run.pfield, value)) {
      return kLoopNotRecorded;
    }
  }
  return kOk;
}

// "x" and a number: so many values in all, one of which is there already.
ErrorCode readRepeatCount(RunState &run, SourceReader &source) {
  ++source.position;
  std::uint64_t count = 0;
  if (!isDigit(current(source)) || !read_ulong(count, source.line, source.position)) {
    return kRepeatNeedsDigit;
  }
  return repeatValue(run, source, count > 0 ? count - 1 : 0);
}

// ":" or "'": the next value starts together with the one before it, in an event that is inserted
// for it. It may stand once in a p-field; before the first value it has nothing to start together
// with, and is dropped.
ErrorCode readMark(RunState &run, SourceReader &source) {
  ++source.position;
  if (run.pfield.marked) {
    return kMultipleMarks;
  }
  run.pfield.marked = true;
  if (run.pfield.filled > 0) {
    run.pfield.insertRequest = true;
    run.block.target += run.pfield.number > 2 ? 1 : 0;
  }
  return kOk;
}

ErrorCode readDataValue(RunState &run, SourceReader &source) {
  if (!findInputMode(run.pfield.inputMode)->mayBegin(current(source))) {
    return kDataOutOfBounds;
  }
  if (blockIsFull(run)) {
    warn(run, source, kEventsNotAdded);
    run.pfield.blockEnd = true;
    return kOk;
  }
  float value = 0.0F;
  if (!readValue(run, source.line, source.position, value)) {
    return kBadValue;
  }
  run.pfield.lastValue = value;
  return repeatValue(run, source, 1);
}

ErrorCode readData(RunState &run, SourceReader &source) {
  switch (current(source)) {
    case ',':
      ++source.position;
      return kOk;
    case '\'':
    case ':':
      return readMark(run, source);
    case '/':
      ++source.position;
      return repeatValue(run, source, 1);
    case 'x':
      return readRepeatCount(run, source);
    default:
      return readDataValue(run, source);
  }
}

ErrorCode readItem(RunState &run, SourceReader &source) {
  CommentKind kind;
  if (isPfieldName(source.line, source.position)) {
    return readName(run, source);
  }
  if (is_comment_start(source, kind)) {
    return skipClosedComment(run, source, kind);
  }
  if (current(source) == '<' || current(source) == '>') {
    if (!loopMarker(run.pfield, current(source))) {
      return kBadLoop;
    }
    ++source.position;
    return kOk;
  }
  return readData(run, source);
}

// Moves on to the next item, or to the end of the p-field when the block is full. Error 5 when the
// input ends.
ErrorCode skipToItem(RunState &run, SourceReader &source) {
  ErrorCode error =
      run.pfield.blockEnd ? skipTo(run, source, endsPfield) : skip_blanks(run, source);
  return error == kEndOfInput ? kInputEndsInBlock : error;
}

ErrorCode readItems(RunState &run, SourceReader &source) {
  for (;;) {
    ErrorCode error = skipToItem(run, source);
    if (error > 0) {
      return error;
    }
    if (endsPfield(source.line + source.position)) {
      return kOk;
    }
    error = readItem(run, source);
    if (error > 0) {
      return error;
    }
  }
}

// Fills what is left, and tells when the values have made the block longer than its header says.
ErrorCode finishPfield(RunState &run, const SourceReader &source, std::int64_t targetBefore) {
  int number = run.pfield.number;
  if (!run.pfield.dataSeen) {
    say(run.screen, "\nERROR: P%d is blank ... OY!\n\n", {number});
    return kAlreadyReported;
  }
  ErrorCode error = completePfield(run, source);
  if (error > 0) {
    return error;
  }
  if (number >= 3 && run.block.header.length < 0.0F && run.block.target != targetBefore) {
    say(run.screen, "\n\tP%d: Fused data changed \"events\" from %d to %d",
        {number, targetBefore, run.block.target});
  }
  return kOk;
}

}  // namespace

bool atPfield(const char *text) { return text[0] == 'p' && isDigit(text[1]); }

ErrorCode parsePfield(RunState &run, SourceReader &source) {
  std::int64_t targetBefore = run.block.target;
  ErrorCode error = readOutputSpecifier(run, source);
  if (error <= 0) {
    error = readItems(run, source);
  }
  return error > 0 ? error : finishPfield(run, source, targetBefore);
}
