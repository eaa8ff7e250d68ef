// A statement's name comes in, already read; its row in the table knows who reads the rest.
#include "global/statements.h"

#include <cstring>

#include "global/const_statement.h"
#include "global/macro_statements.h"
#include "preproc/source_reader.h"

namespace korvo {

namespace {

// ">": the rest of the line goes into the score as it is, on a line of its own. A MIDI file has no
// place for it.
ErrorCode writeLiteralLine(SourceReader &source, OutputBuffer *score) {
  const char *rest = source.line + source.position;
  std::size_t length = std::strlen(rest);
  if (score != nullptr) {
    append(*score, "\n", 1);
    append(*score, rest, length);
  }
  source.position += static_cast<std::int32_t>(length);
  return kOk;
}

struct GlobalStatement {
  CommandCode command;
  ErrorCode (*run)(SourceReader &, GlobalState &);
};

// clang-format off
constexpr GlobalStatement kStatements[] = {
    {kTE, [](SourceReader &source, GlobalState &global) { return DefineTempo(source, global.tempo); }},
    {kRD, [](SourceReader &source, GlobalState &global) { return readRD(source, global.settings); }},
    {kRS, [](SourceReader &source, GlobalState &global) { return readRS(source, global.random); }},
    {kSR, [](SourceReader &source, GlobalState &global) { return readSR(source, global.settings); }},
    {kLiteralLine, [](SourceReader &source, GlobalState &global) { return writeLiteralLine(source, global.score); }},
    {kMacroWord, [](SourceReader &source, GlobalState &) { return MacroStatement(source); }},
    {kConstWord, [](SourceReader &source, GlobalState &) { return ConstStatement(source); }},
};
// clang-format on

}  // namespace

ErrorCode RunGlobalStatement(SourceReader &source, GlobalState &global, CommandCode command) {
  for (const GlobalStatement &statement : kStatements) {
    if (statement.command == command) {
      return statement.run(source, global);
    }
  }
  return kInvalidGlobalData;
}

}  // namespace korvo
