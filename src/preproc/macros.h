// Macros: text with a name, and the statements that define and forget it.
//
//   #define name(first, second) #the body, with $first and $second#
//   #undef name
#pragma once

#include <string_view>

#include "driver/error_code.h"
#include "preproc/name_table.h"

struct RunState;
struct SourceReader;

inline constexpr int kMaxMacroParameters = 128;
inline constexpr int kMaxBodyLength = 4095;

struct Macro : NamedRecord {
  int argc = 0;  // number of parameters, 0 without a list
  const std::string_view *params = nullptr;
  int repeatedParam = 0;  // the first one with a name that an earlier one has, or argc
  std::string_view body;  // line ends inside it are line feeds
};

using MacroTable = NameTable;

// Runs the statement behind a "#" (the position is on the character after it): #define, #undef, or
// an #if(...) or #endif that does not open its line, which are read and have no effect. Errors: 8,
// 32, 80, 81, 84, 88, 91, 114 to 116, 1000, and those of `read_line`.
ErrorCode MacroStatement(RunState &run, SourceReader &source);

void freeMacros(MacroTable &table);
