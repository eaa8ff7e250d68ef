// Macros: text with a name.
#pragma once

#include <string_view>

#include "preproc/name_table.h"
#include "preproc/origins.h"

namespace korvo {

inline constexpr int kMaxMacroParameters = 128;
inline constexpr int kMaxBodyLength = 4095;

struct Macro : NamedRecord {
  int argc = 0;  // number of parameters, 0 without a list
  const std::string_view *params = nullptr;
  int repeatedParam = 0;  // the first one with a name that an earlier one has, or argc
  std::string_view body;  // line ends inside it are line feeds
  Spot spot;              // where the body begins
};

void freeMacros(NameTable &table);

}  // namespace korvo
