// A statement's name comes in, already read; its row in the table knows who reads the rest.
#include "global/statements.h"

#include <cstring>

#include "ddf/settings.h"
#include "driver/run_state.h"
#include "global/tempo_map.h"
#include "preproc/constants.h"
#include "preproc/macros.h"

namespace {

// ">": the rest of the line goes into the score as it is, on a line of its own. A MIDI file has no
// place for it.
ErrorCode writeLiteralLine(RunState &run, SourceReader &source) {
  const char *rest = source.line + source.position;
  std::size_t length = std::strlen(rest);
  if (!run.options.midi) {
    append(run.output, "\n", 1);
    append(run.output, rest, length);
  }
  source.position += static_cast<std::int32_t>(length);
  return kOk;
}

struct GlobalStatement {
  CommandCode command;
  ErrorCode (*run)(RunState &, SourceReader &);
};

constexpr GlobalStatement kStatements[] = {
    {kTE, DefineTempo},
    {kRD, readRD},
    {kRS, readRS},
    {kSR, readSR},
    {kLiteralLine, writeLiteralLine},
    {kMacroWord, MacroStatement},
    {kConstWord, ConstStatement},
};

}  // namespace

ErrorCode RunGlobalStatement(RunState &run, SourceReader &source, CommandCode command) {
  for (const GlobalStatement &statement : kStatements) {
    if (statement.command == command) {
      return statement.run(run, source);
    }
  }
  return kInvalidGlobalData;
}
