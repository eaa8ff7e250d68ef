#include "base/characters.h"

#include <gtest/gtest.h>

#include <cstring>

namespace korvo {

namespace {

TEST(Characters, TheClassesAreThoseOfPlainAscii) {
  for (int code = 0; code < 256; ++code) {
    char c = static_cast<char>(code);
    EXPECT_EQ(isSpace(c), code != 0 && std::strchr(" \t\n\v\f\r", code) != nullptr) << code;
    EXPECT_EQ(isDigit(c), code != 0 && std::strchr("0123456789", code) != nullptr) << code;
    bool small = code != 0 && std::strchr("abcdefghijklmnopqrstuvwxyz", code) != nullptr;
    bool large = code != 0 && std::strchr("ABCDEFGHIJKLMNOPQRSTUVWXYZ", code) != nullptr;
    EXPECT_EQ(isLetter(c), small || large) << code;
    EXPECT_EQ(isNamePart(c), small || large || isDigit(c) || c == '_') << code;
    EXPECT_EQ(toLower(c), large ? static_cast<char>(code + 32) : c) << code;
  }
}

TEST(Characters, BlanksInLineStopAtTheEnd) {
  struct {
    const char *text;
    std::int32_t from;
    std::int32_t to;
  } rows[] = {
      {"", 0, 0},    {"   ", 0, 3}, {"  x", 0, 2},
      {"x  ", 0, 0}, {"x  ", 1, 3}, {" \t\n\v\f\rx", 0, 6},
  };
  for (const auto &row : rows) {
    std::int32_t position = row.from;
    skipBlanksInLine(row.text, position);
    EXPECT_EQ(position, row.to) << row.text;
  }
}

TEST(Characters, ASetHasItsMembersAndNoOthers) {
  constexpr CharacterSet kSet("a\xff\0");
  for (int code = 0; code < 256; ++code) {
    EXPECT_EQ(contains(kSet, static_cast<char>(code)), code == 'a' || code == 255 || code == 0)
        << code;
  }
}

TEST(Characters, WhatIsInASetIsFoundFromAPlaceOn) {
  constexpr CharacterSet kSet(";#");
  const char text[] = "ab;cd#";
  struct {
    int from;
    int end;
    int found;
  } rows[] = {{0, 6, 2}, {2, 6, 2}, {3, 6, 5}, {3, 5, 5}, {0, 2, 2}, {0, 0, 0}, {6, 6, 6}};
  for (const auto &row : rows) {
    EXPECT_EQ(findIn(kSet, text + row.from, text + row.end) - text, row.found) << row.from;
  }
}

TEST(Characters, ASetWithTheNulFindsTheEndOfAText) {
  constexpr CharacterSet kSet(";\0");
  const char text[] = "ab;cd";
  EXPECT_EQ(findIn(kSet, text) - text, 2);
  EXPECT_EQ(findIn(kSet, text + 3) - text, 5);
  EXPECT_EQ(findIn(kSet, text + 5) - text, 5);
}

}  // namespace

}  // namespace korvo
