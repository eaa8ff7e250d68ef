#include "preproc/line_edit.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace korvo {

namespace {

struct Edited {
  bool done;
  std::string line;
};

Edited edit(const std::string &line, int from, int to, std::string_view inserted) {
  char buffer[kLineBytes];
  std::memset(buffer, '?', sizeof buffer);
  std::memcpy(buffer, line.c_str(), line.size() + 1);
  bool done = replaceInLine(buffer, from, to, inserted);
  return {done, buffer};
}

TEST(LineEdit, ReplacesAPiece) {
  struct {
    const char *line;
    int from;
    int to;
    const char *inserted;
    const char *result;
  } rows[] = {
      {"abcdef", 2, 4, "XY", "abXYef"},          // as long
      {"abcdef", 2, 4, "X", "abXef"},            // shorter
      {"abcdef", 2, 4, "UVWXYZ", "abUVWXYZef"},  // longer
      {"abcdef", 2, 4, "", "abef"},
      {"abcdef", 2, 2, "XY", "abXYcdef"},
      {"abcdef", 0, 6, "X", "X"},
      {"abcdef", 0, 6, "", ""},
      {"abcdef", 0, 0, "X", "Xabcdef"},
      {"abcdef", 6, 6, "X", "abcdefX"},
      {"abcdef", 5, 6, "XYZ", "abcdeXYZ"},
      {"", 0, 0, "X", "X"},
      {"", 0, 0, "", ""},
  };
  for (const auto &row : rows) {
    Edited edited = edit(row.line, row.from, row.to, row.inserted);
    EXPECT_TRUE(edited.done);
    EXPECT_EQ(edited.line, row.result);
  }
}

TEST(LineEdit, OnlyTheGivenTextIsInserted) {
  EXPECT_EQ(edit("ab", 1, 1, std::string_view("XYZ", 2)).line, "aXYb");
}

TEST(LineEdit, ALineMayGrowToItsLimitButNoFurther) {
  constexpr std::size_t kFull = 4095;
  const std::string half(2000, 'a');
  struct {
    std::string line;
    int from;
    int to;
    std::size_t inserted;
    bool fits;
  } rows[] = {
      {half, 1000, 1000, kFull - 2000, true},
      {half, 1000, 1000, kFull - 2000 + 1, false},
      {half, 500, 1500, kFull - 1000, true},
      {half, 500, 1500, kFull - 1000 + 1, false},
      {"", 0, 0, kFull, true},
      {"", 0, 0, kFull + 1, false},
      {std::string(kFull, 'a'), 0, 0, 0, true},
      {std::string(kFull, 'a'), 0, 0, 1, false},
      {std::string(kFull, 'a'), 4094, 4095, 1, true},
      {std::string(kFull, 'a'), 4094, 4095, 2, false},
      {std::string(kFull, 'a'), 0, 4095, kFull, true},
      {std::string(kFull, 'a'), 4095, 4095, 1, false},
      {half, 0, 0, 1000000, false},
  };
  for (const auto &row : rows) {
    std::string inserted(row.inserted, 'X');
    std::string expected = row.line;
    if (row.fits) {
      expected.replace(static_cast<std::size_t>(row.from),
                       static_cast<std::size_t>(row.to - row.from), inserted);
    }
    Edited edited = edit(row.line, row.from, row.to, inserted);
    EXPECT_EQ(edited.done, row.fits) << row.inserted;
    EXPECT_EQ(edited.line, expected) << row.inserted;
  }
}

}  // namespace

}  // namespace korvo
