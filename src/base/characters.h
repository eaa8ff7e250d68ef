// The classes of characters that the language knows. They are those of plain ASCII whatever the
// user's locale is, so that a piece reads the same everywhere.
#pragma once

#include <cstdint>

namespace korvo {

constexpr bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
constexpr char toLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// What a macro, argument or constant name goes on with behind its first letter.
constexpr bool isNamePart(char c) { return isLetter(c) || isDigit(c) || c == '_'; }

// Moves the position over white space.
inline void skipBlanksInLine(const char *text, std::int32_t &position) {
  while (isSpace(text[position])) {
    ++position;
  }
}

}  // namespace korvo
