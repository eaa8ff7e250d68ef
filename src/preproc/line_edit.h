// Replacing a piece of a line in place, within the fixed room that every line has.
#pragma once

#include <cstdint>
#include <string_view>

#include "preproc/source_reader.h"

namespace korvo {

// Replaces the characters from `from` up to (not including) `to` by `inserted`, which must not lie
// in the line itself. False, and the line unchanged, when it would grow beyond kMaxLineLength.
bool replaceInLine(char *line, std::int32_t from, std::int32_t to, std::string_view inserted);

}  // namespace korvo
