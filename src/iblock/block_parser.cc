// A header, statements, p-fields, a brace. The parser keeps the order of the p-fields and leaves
// what stands in them to their own room.
#include "iblock/block_parser.h"

#include "ddf/loops.h"
#include "ddf/settings.h"
#include "driver/run_state.h"
#include "iblock/header.h"
#include "iblock/pfield.h"
#include "reader/lexical.h"
#include "reader/line_reader.h"
#include "reader/names.h"
#include "reader/numbers.h"

namespace {

// P2 comes first, the others in any order, each once. Whoever begins with p0 or p1 is told that P2
// comes first, too.
ErrorCode checkPfieldNumber(const BlockState &block, int number) {
  if (number > block.header.pfieldCount) {
    return kPfieldOutOfBounds;
  }
  if (number != 2 && !block.pfields[2].given) {
    return kP2MustBeFirst;
  }
  if (number < 2) {
    return kBadPfieldNumber;
  }
  return block.pfields[number].given ? kDuplicatePfield : kOk;
}

ErrorCode parseNumberedPfield(RunState &run, SourceReader &source) {
  if (run.pfield.looping) {
    warn(run, source, kLoopTerminated);
  }
  ++source.position;
  int number = 0;
  if (!read_short(number, source.line, source.position)) {
    return kBadPfieldNumber;
  }
  ErrorCode error = checkPfieldNumber(run.block, number);
  if (error > 0) {
    return error;
  }
  beginPfield(run, number);
  error = parsePfield(run, source);
  if (error > 0) {
    return error;
  }
  run.block.pfields[number].given = true;
  if (number == 2) {
    run.block.target = run.pfield.filled;
  }
  return kOk;
}

ErrorCode closeBlock(const RunState &run, SourceReader &source) {
  for (int number = 2; number <= run.block.header.pfieldCount; ++number) {
    if (!run.block.pfields[number].given) {
      return kPfieldsSkipped;
    }
  }
  ++source.position;
  return kOk;
}

ErrorCode runBlockStatement(RunState &run, SourceReader &source) {
  if (!isBlockName(source.line, source.position)) {
    return kInvalidBlockCommand;
  }
  if (!lookupDdfName(source.line, source.position, run.name)) {
    return kInvalidCommand;
  }
  switch (run.name.code) {
    case kRD:
      return readRD(run, source);
    case kRS:
      return readRS(run, source);
    default:
      return kBadValue;
  }
}

// The statements and comments before a p-field, up to that p-field or the end of the line.
ErrorCode runBlockStatements(RunState &run, SourceReader &source) {
  for (;;) {
    skipBlanksInLine(source.line, source.position);
    if (current(source) == '\0' || atPfield(source.line + source.position)) {
      return kOk;
    }
    CommentKind kind;
    ErrorCode error = is_comment_start(source, kind) ? skipClosedComment(run, source, kind)
                                                     : runBlockStatement(run, source);
    if (error > 0) {
      return error;
    }
  }
}

}  // namespace

ErrorCode parseBlock(RunState &run, SourceReader &source) {
  for (;;) {
    ErrorCode error = kOk;
    if (current(source) == '\0') {
      error = read_line(run, source);
      if (error != kOk) {
        return error;
      }
    }
    skipBlanksInLine(source.line, source.position);
    char c = current(source);
    if (c == 'i') {
      error = parseHeader(run, source);
      if (error == kEndOfInput) {
        warn(run, source, kBlockSkipped);
        return kEndOfInput;
      }
    } else if (atPfield(source.line + source.position)) {
      error = parseNumberedPfield(run, source);
    } else if (c == '}') {
      return closeBlock(run, source);
    } else {
      error = runBlockStatements(run, source);
    }
    if (error > 0) {
      return error;
    }
  }
}
