// The classes of characters that the language knows. They are those of plain ASCII whatever the
// user's locale is, so that a piece reads the same everywhere.
#pragma once

#include <cstddef>
#include <cstdint>

namespace korvo {

constexpr bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
constexpr char toLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Characters to look for, and a quick way over all others: most of a text means nothing to the
// passes that look for a mark in it.
struct CharacterSet {
  bool has[256] = {};

  // The characters of a literal, less the NUL that closes it.
  template <std::size_t size>
  constexpr explicit CharacterSet(const char (&members)[size]) {
    for (std::size_t i = 0; i + 1 < size; ++i) {
      has[static_cast<unsigned char>(members[i])] = true;
    }
  }
};

constexpr bool contains(const CharacterSet &set, char c) {
  return set.has[static_cast<unsigned char>(c)];
}

// The first character from `from` on that is in the set; `end` when there is none before it.
inline const char *findIn(const CharacterSet &set, const char *from, const char *end) {
  while (from != end && !contains(set, *from)) {
    ++from;
  }
  return from;
}

// The same in a text without an end: the set must have the NUL that closes it.
template <typename Char>
Char *findIn(const CharacterSet &set, Char *from) {
  while (!contains(set, *from)) {
    ++from;
  }
  return from;
}

// What a macro, argument or constant name goes on with behind its first letter.
inline constexpr CharacterSet kNameParts(
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_");
constexpr bool isNamePart(char c) { return contains(kNameParts, c); }

// Moves the position over white space.
inline void skipBlanksInLine(const char *text, std::int32_t &position) {
  while (isSpace(text[position])) {
    ++position;
  }
}

}  // namespace korvo
