// Two places in a line: the statement position (its start, and right behind a statement), where a
// global statement may begin, and the character position (everywhere else), where only blanks,
// comments and the "i" of an i-block may stand. So a statement behind a comment on the same line is
// refused, while a comment behind a statement is fine.
#include "reader/scanner.h"

#include "driver/run_state.h"
#include "global/statements.h"
#include "global/tempo_map.h"
#include "reader/characters.h"
#include "reader/lexical.h"
#include "reader/line_reader.h"
#include "reader/names.h"

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

ErrorCode runStatement(RunState &run, SourceReader &source) {
  return lookupDdfName(source.line, source.position, run.name)
             ? RunGlobalStatement(run, source, run.name.code)
             : kInvalidGlobalCommand;
}

// Runs the statements of the line one after another; the first thing that is none ends them.
ErrorCode runStatements(RunState &run, SourceReader &source) {
  for (;;) {
    skipBlanksInLine(source.line, source.position);
    if (!isStatement(source.line + source.position)) {
      return kOk;
    }
    ErrorCode error = runStatement(run, source);
    if (error > 0) {
      return error;
    }
  }
}

// What may stand behind the statements. `found` tells whether it is the "i" of an i-block.
ErrorCode skipToBlock(RunState &run, SourceReader &source, bool &found) {
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
    if (skip_comment(run, source, kind) != kOk) {
      return kCommentsMismatched;
    }
  }
}

}  // namespace

ErrorCode scan_to_next_iblock(RunState &run, SourceReader &source) {
  for (;;) {
    ErrorCode error = read_line(run, source);
    if (error != kOk) {
      return error;
    }
    error = runStatements(run, source);
    if (error > 0) {
      return error;
    }
    bool found = false;
    error = skipToBlock(run, source, found);
    if (error != kOk) {
      return error;
    }
    if (found) {
      if (run.options.tempoVerbose) {
        ListTempos(run);
      }
      return kOk;
    }
  }
}
