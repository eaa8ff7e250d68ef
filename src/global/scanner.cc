// Two places in a line: the statement position (its start, and right behind a statement), where a
// global statement may begin, and the character position (everywhere else), where only blanks,
// comments and the "i" of an i-block may stand. So a statement behind a comment on the same line is
// refused, while a comment behind a statement is fine.
#include "global/scanner.h"

#include "base/characters.h"
#include "global/statements.h"
#include "global/tempo_map.h"
#include "preproc/source_reader.h"
#include "reader/lexical.h"
#include "reader/line_reader.h"
#include "reader/names.h"

namespace korvo {

namespace {

constexpr const char *kStatementNames[] = {"pf", "rd", "rs", "sr", "te"};

bool isStatement(const char *text) {
  char first = toLower(text[0]);
  if (first == '#' || first == '>') {
    return true;
  }
  for (const char *name : kStatementNames) {
    if (first == name[0] && toLower(text[1]) == name[1]) {
      return true;
    }
  }
  return false;
}

ErrorCode runStatement(SourceReader &source, GlobalState &global) {
  return lookupDdfName(source.line, source.position, global.name)
             ? RunGlobalStatement(source, global, global.name.code)
             : kInvalidGlobalCommand;
}

// Runs the statements of the line one after another; the first thing that is none ends them.
ErrorCode runStatements(SourceReader &source, GlobalState &global) {
  for (;;) {
    skipBlanksInLine(source.line, source.position);
    if (!isStatement(source.line + source.position)) {
      return kOk;
    }
    RETURN_IF_ERROR(runStatement(source, global));
  }
}

// What may stand behind the statements. `found` tells whether it is the "i" of an i-block.
ErrorCode skipToBlock(SourceReader &source, bool &found) {
  found = false;
  for (;;) {
    skipBlanksInLine(source.line, source.position);
    char c = current(source);
    CommentKind kind;
    if (c == '\0') {
      return kOk;
    }
    if (c == 'i') {
      found = true;
      return kOk;
    }
    if (!is_comment_start(source, kind)) {
      return kInvalidGlobalCommand;
    }
    if (skip_comment(source, kind) != kOk) {
      return kCommentsMismatched;
    }
  }
}

}  // namespace

ErrorCode scan_to_next_iblock(SourceReader &source, GlobalState &global) {
  for (;;) {
    ErrorCode error = read_line(source);
    if (error != kOk) {
      return error;
    }
    RETURN_IF_ERROR(runStatements(source, global));
    bool found = false;
    error = skipToBlock(source, found);
    if (error != kOk) {
      return error;
    }
    if (found) {
      if (source.messages->tempoVerbose) {
        ListTempos(global.tempo, *source.messages);
      }
      return kOk;
    }
  }
}

}  // namespace korvo
