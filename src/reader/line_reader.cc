// A physical line comes in; what leaves is the text that the parsers see. On its way the line is
// looked at for `#if(` and `#endif`, and scanned twice: for macro calls ("$"), then for constant
// references ("~"). Both scans leave comments alone; the first marks what belongs to a macro
// definition, and the second leaves that alone too. A line without any mark goes through as it is.
#include "reader/line_reader.h"

#include <algorithm>
#include <cstring>

#include "base/characters.h"
#include "preproc/conditional.h"
#include "preproc/constants.h"
#include "preproc/macro_call.h"
#include "preproc/source_reader.h"

namespace korvo {

namespace {

// A ">" at this position of the line does not turn definitions off, as it does everywhere else. An
// oddity of old that pieces may rely on: a loop that ends exactly there leaves a "#" behind it free
// to open a definition.
constexpr std::int32_t kHarmlessLoopEnd = 85;

// What a scan stops at outside comments, the line's end included.
constexpr CharacterSet kMacroMarks("$#>;/\0");
constexpr CharacterSet kConstantMarks("~;/\0");

bool startsWith(const char *text, const char *word) {
  return std::strncmp(text, word, std::strlen(word)) == 0;
}

// Steps over one character, or over both characters of a comment mark, and keeps the comment state.
// Inside a comment only "*/" counts, whichever mark opened it, and the line feed of a macro body
// for a comment that ";" opened.
void stepOver(const char *line, std::int32_t &p, CommentState &comment) {
  if (comment == kNoComment) {
    if (line[p] == ';') {
      comment = kLineComment;
    } else if (line[p] == '/' && line[p + 1] == '*') {
      comment = kBlockComment;
      ++p;
    }
  } else if (line[p] == '*' && line[p + 1] == '/') {
    comment = kNoComment;
    ++p;
  } else if (line[p] == '\n' && comment == kLineComment) {
    comment = kNoComment;
  }
  ++p;
}

void endLine(CommentState &comment) {
  if (comment == kLineComment) {
    comment = kNoComment;
  }
}

void mark(SourceReader &source, std::int32_t from, std::int32_t to) {
  std::fill(source.marked + from, source.marked + to, true);
  source.markedLength = to;
}

// Expands the call whose "$" stands at `p` and moves `p` to where the scan goes on: at the first
// inserted character, so that calls in the inserted text are expanded in turn. Behind a call that
// opens the line the scan goes on at index 1, whatever was inserted: a call at the very beginning
// of such a text stays as it is.
ErrorCode expandCallAt(SourceReader &source, std::int32_t &p) {
  bool opensLine = p == 0;
  source.position = p + 1;
  RETURN_IF_ERROR(ExpandMacroCall(source, nullptr, source.line, source.position, 1));
  p = source.position;
  if (opensLine && source.line[0] != '\0') {
    p = 1;
  }
  return kOk;
}

// The next character from `p` on that is in the set.
std::int32_t nextIn(const CharacterSet &set, const char *line, std::int32_t p) {
  return static_cast<std::int32_t>(findIn(set, line + p) - line);
}

// The macro scan, from the position to the end of the line.
ErrorCode scanForMacros(SourceReader &source) {
  const char *line = source.line;
  CommentState comment = source.comment;
  bool mayDefine = true;
  std::int32_t p = source.position;
  for (;;) {
    if (comment == kNoComment && source.definitionState == 0) {
      p = nextIn(kMacroMarks, line, p);
    }
    if (line[p] == '\0') {
      break;
    }
    if (comment == kNoComment) {
      if (line[p] == '>' && p != kHarmlessLoopEnd) {
        mayDefine = false;
      }
      if (line[p] == '#' && (source.definitionState > 0 || mayDefine)) {
        bool opens = source.definitionState == 0;
        if (opens && line[p + 1] != '\0' && std::strchr("ceiu", line[p + 1]) != nullptr) {
          break;  // a statement of its own up to the end of the line
        }
        source.definitionState = (source.definitionState + 1) % 3;
        mark(source, p, p + 1);
        ++p;
        continue;
      }
      if (line[p] == '$' && source.definitionState == 0) {
        RETURN_IF_ERROR(expandCallAt(source, p));
        continue;
      }
    }
    std::int32_t from = p;
    stepOver(line, p, comment);
    if (source.definitionState > 0) {
      mark(source, from, p);
    }
  }
  source.position = 0;
  return kOk;
}

// The constant scan, over the whole line. Marks belong to positions, and stay there when a value
// that is written into the line moves the text behind it: a definition behind a constant on one
// line may lose or gain a few characters of its protection. Where it ends decides in which comment
// state the next line begins.
ErrorCode scanForConstants(SourceReader &source) {
  CommentState comment = source.comment;
  std::int32_t p = 0;
  for (;;) {
    if (comment == kNoComment) {
      p = nextIn(kConstantMarks, source.line, p);
    }
    if (source.line[p] == '\0') {
      break;
    }
    if (comment == kNoComment && source.line[p] == '~' && !source.marked[p]) {
      source.position = p + 1;
      RETURN_IF_ERROR(ExpandConstRef(source));
      p = source.position;
    } else {
      stepOver(source.line, p, comment);
    }
  }
  endLine(comment);
  source.comment = comment;
  source.position = 0;
  return kOk;
}

void tellExpanded(const SourceReader &source) {
  const Listener &listener = source.messages->listener;
  if (listener.expanded != nullptr) {
    listener.expanded(listener.context, source.line, std::strlen(source.line));
  }
}

}  // namespace

ErrorCode read_line(SourceReader &source) {
  ErrorCode error = fetchLine(source);
  if (error != kOk) {
    return error;
  }
  if (!source.hasMarks && source.comment == kNoComment && source.definitionState == 0) {
    tellExpanded(source);
    return kOk;
  }
  skipBlanksInLine(source.line, source.position);
  if (current(source) == '#') {
    const char *word = source.line + source.position + 1;
    if (startsWith(word, "if(")) {
      ++source.position;
      return OpenConditional(source);
    }
    if (startsWith(word, "endif")) {
      ++source.position;
      return CloseConditional(source);
    }
  }
  RETURN_IF_ERROR(scanForMacros(source));
  RETURN_IF_ERROR(scanForConstants(source));
  tellExpanded(source);
  return kOk;
}

}  // namespace korvo
