// The line reader hands over every line that begins with `#if(` or `#endif`. The lines of a dropped
// section pass through here unexpanded; only comments and further `#if(` and `#endif` in them are
// looked at, wherever they stand in a line.
#include "preproc/conditional.h"

#include <cstdio>
#include <cstring>

#include "driver/run_state.h"
#include "preproc/constants.h"
#include "preproc/macro_call.h"
#include "reader/characters.h"
#include "reader/lexical.h"
#include "reader/line_reader.h"
#include "reader/numbers.h"

namespace {

// Steps over `word` if it stands at the position.
bool takeWord(SourceReader &source, const char *word) {
  std::size_t length = std::strlen(word);
  if (std::strncmp(source.line + source.position, word, length) != 0) {
    return false;
  }
  source.position += static_cast<std::int32_t>(length);
  return true;
}

// What is known of comments in a dropped section: the two kinds independently of each other.
struct DroppedComments {
  bool line = false;
  bool block = false;
};

// The character behind a "#" or behind one of the two words is always stepped over, so the second
// of two words that touch is not seen.
//
// Whether the #endif of the section stands between here and the end of the line; the position is
// then behind it.
bool closesInLine(RunState &run, SourceReader &source, DroppedComments &comments, int outerDepth) {
  while (current(source) != '\0') {
    if (!comments.line && !comments.block && takeWord(source, "#")) {
      if (takeWord(source, "endif")) {
        if (--run.conditional.depth == outerDepth) {
          return true;
        }
      } else if (takeWord(source, "if(")) {
        ++run.conditional.depth;
      }
    }
    const char *text = source.line + source.position;
    if (text[0] == '*' && text[1] == '/') {
      comments.block = false;
    } else if (text[0] == ';') {
      comments.line = true;
    } else if (text[0] == '/' && text[1] == '*') {
      comments.block = true;
    }
    next_char(source);
  }
  return false;
}

ErrorCode dropSection(RunState &run, SourceReader &source, int outerDepth) {
  DroppedComments comments;
  while (!closesInLine(run, source, comments, outerDepth)) {
    ErrorCode error = std::feof(source.input) != 0 ? kEndOfInput : read_line(run, source);
    if (error != kOk) {
      return error == kEndOfInput ? kEndifMissingAtEnd : error;
    }
    comments.line = false;
  }
  return kOk;
}

}  // namespace

ErrorCode ReadIfValue(RunState &run, SourceReader &source, float &value) {
  if (!takeWord(source, "if(")) {
    return kBadIf;
  }
  skipBlanksInLine(source.line, source.position);
  if (current(source) == '$') {
    ++source.position;
    ErrorCode error = ExpandMacroCall(run, source, nullptr, source.line, source.position, 1);
    if (error > 0) {
      return error;
    }
  }
  if (current(source) == '~') {
    ++source.position;
    ErrorCode error = ExpandConstRef(run, source);
    if (error > 0) {
      return error;
    }
  }
  if (!isDigit(current(source)) || !read_float(value, source.line, source.position)) {
    return kIfNeedsValue;
  }
  skipBlanksInLine(source.line, source.position);
  if (current(source) != ')') {
    return kIfNotClosed;
  }
  ++source.position;
  return kOk;
}

ErrorCode OpenConditional(RunState &run, SourceReader &source) {
  ReadIfValue(run, source, run.conditional.condition);
  int outerDepth = run.conditional.depth++;
  if (run.conditional.condition != 0.0F) {
    return kOk;
  }
  source.skipping = true;
  ErrorCode error = dropSection(run, source, outerDepth);
  source.skipping = false;
  return error;
}

ErrorCode CloseConditional(RunState &run, SourceReader &source) {
  if (!takeWord(source, "endif")) {
    return kBadEndif;
  }
  if (run.conditional.depth < 1) {
    return kStrayEndif;
  }
  --run.conditional.depth;
  return kOk;
}

bool NoConditionalOpen(const ConditionalState &state) { return state.depth == 0; }
