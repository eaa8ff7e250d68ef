// The one line of source that every parser works on. A line is read, cleaned and expanded in place,
// then parsed from its position on; parsers that come to its end ask for the next one.
#pragma once

#include <cstdint>
#include <cstdio>

inline constexpr int kLineBytes = 4096;  // 4095 characters and the NUL
inline constexpr int kMaxLineLength = kLineBytes - 1;

// What the scan of a line knows about comments: none is open, one that lasts to the end of the
// line, one up to "*/".
enum CommentState : unsigned char { kNoComment, kLineComment, kBlockComment };

struct SourceReader {
  std::FILE *input = nullptr;
  std::int32_t position = 0;     // the next character to look at
  std::int64_t lineCounter = 0;  // lines read so far; the first line is line 1
  char line[kLineBytes] = "";

  // Carried from line to line.
  CommentState comment = kNoComment;
  int definitionState =
      0;                  // marks ("#") seen of an open macro definition: 0 (none is open), 1 or 2
  bool skipping = false;  // the lines of a false section are being dropped: they come as they are

  // Of the whole run.
  std::int64_t runExpansions = 0;  // macro calls and constant references
  std::int64_t runExpanded = 0;    // their characters, and those that took their place

  // Of the line being read.
  int expansions = 0;    // macro calls expanded in it
  int markedLength = 0;  // no mark is set from here on
  // The positions that belong to a macro definition; constants there stay as they are.
  bool marked[kLineBytes] = {};
};

// The character at the position; the NUL at the end of the line.
inline char current(const SourceReader &source) { return source.line[source.position]; }
