// What macros and constants share: their names (a letter, then letters, digits and "_") and the
// loose test of keywords.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/characters.h"
#include "base/error_code.h"

namespace korvo {

struct SourceReader;

inline constexpr int kMaxNameLength = 4095;

// The name at the position, which moves behind it; empty when no letter stands there.
inline std::string_view takeName(const char *text, std::int32_t &position) {
  const char *first = text + position;
  const char *end = first;
  if (isLetter(*end)) {
    while (isNamePart(*end)) {
      ++end;
    }
  }
  position = static_cast<std::int32_t>(end - text);
  return {first, static_cast<std::size_t>(end - first)};
}

// Whether at least one character of `text` is that of `keyword` in its place. So "#unzzz" is taken
// as "#undef".
bool matchesLoosely(const char *text, std::string_view keyword);

// Prints that there is no `kind` ("macro" or "constant") of that name. Returns kContextOnly.
ErrorCode unknownName(SourceReader &source, const char *kind, std::string_view name);

}  // namespace korvo
