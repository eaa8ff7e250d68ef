// The text of a piece as parsers meet it: one line at a time, cleaned and expanded in place, and
// all that reading it needs from line to line. A line is parsed from its position on; parsers that
// come to its end ask for the next one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>

#include "base/error_code.h"
#include "base/messages.h"
#include "base/random.h"
#include "preproc/name_table.h"
#include "preproc/origins.h"

namespace korvo {

inline constexpr int kLineBytes = 4096;  // 4095 characters and the NUL
inline constexpr int kMaxLineLength = kLineBytes - 1;

// What the scan of a line knows about comments: none is open, one that lasts to the end of the
// line, one up to "*/".
enum CommentState : unsigned char { kNoComment, kLineComment, kBlockComment };

// Conditional sections.
struct ConditionalState {
  int depth = 0;           // open sections
  float condition = 0.0F;  // the last value that an #if has read
};

// What a piece has spent on expansions so far.
struct ExpansionCount {
  std::int64_t expansions = 0;  // macro calls and constant references
  std::int64_t characters = 0;  // theirs, and those that took their place
};

// The numbers that "@1" to "@4" stand for.
struct RunValues {
  double lastBlockSeconds = 0.0;   // the duration of the last i-block
  double cumulativeSeconds = 0.0;  // the latest end that any i-block has reached
  const float *tempo = nullptr;    // of the last conversion, in beats per minute
};

// Text on its way from the host, gathered in front of the lines.
struct LineInput {
  TextInput text;
  std::size_t next = 0;
  std::size_t end = 0;
  bool ended = false;   // an attempt to read has met the end
  bool failed = false;  // or an error
  char bytes[1 << 14];
};

using MacroTable = NameTable;
using ConstTable = NameTable;

struct SourceReader {
  std::int32_t position = 0;     // the next character to look at
  std::int64_t lineCounter = 0;  // lines read so far; the first line is line 1
  char line[kLineBytes] = "";
  LineInput input;

  // Carried from line to line.
  CommentState comment = kNoComment;
  int definitionState = 0;  // marks ("#") seen of an open macro definition: 0 (none is open), 1, 2
  ConditionalState conditional;
  MacroTable macros;
  ConstTable constants;
  ExpansionCount spent;

  // Of the line being read.
  bool hasMarks = false;  // as it was fetched: something that the preprocessor must look at
  int expansions = 0;     // macro calls expanded in it
  int markedLength = 0;   // no mark is set from here on
  // The positions that belong to a macro definition; constants there stay as they are.
  bool marked[kLineBytes] = {};

  // Where the text comes from. Replacements are followed only when messages tell their places.
  SourceMap map;
  LineOrigin origin;
  ReplacementList replacements;  // in the line
  bool wantsPlaces = false;      // messages tell where they stand
  bool followsLines = false;     // so do dropped lines, of which somebody is told
  std::int64_t placeSteps = 0;   // spent on finding that out

  RunValues values;
  Random *random = nullptr;  // that "?" draws from
  Messages *messages = nullptr;
};

// The character at the position; the NUL at the end of the line.
inline char current(const SourceReader &source) { return source.line[source.position]; }

// Whether an attempt to read on has met the end of the text.
inline bool inputEnded(const SourceReader &source) { return source.input.ended; }

// Fetches the next physical line, cleaned of line ends, and begins it: the position is 0, nothing
// is marked. A line longer than kMaxLineLength comes in parts. kEndOfInput (line and position
// untouched) when there is none; 9 when the text cannot be read; 32 when the run has said or
// expanded too much.
ErrorCode fetchLine(SourceReader &source);

// Prints the text of warning `code` (any number) unless -s is given; from code 10 on with line
// number, line and caret.
void warn(SourceReader &source, int code);

// Prints the text of error `code` (any number) and, from code 10 on, the line number, the line and
// the caret. 999 prints nothing, 1000 only the line and the caret.
void reportError(SourceReader &source, int code);

// Prints an error that has no number, at the position.
void sayError(SourceReader &source, const char *format,
              std::initializer_list<MessageArgument> arguments = {});

}  // namespace korvo
