#include "preproc/source_reader.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "preproc/macro_call.h"
#include "support/piece.h"
#include "support/string_input.h"

namespace korvo {

namespace {

// What is said of a line that is being read.
std::string onLine(const std::string &line, int position,
                   const std::function<void(SourceReader &)> &telling,
                   std::int64_t lineCounter = 7) {
  Piece piece("");
  std::memcpy(piece.source.line, line.c_str(), line.size() + 1);
  piece.source.position = position;
  piece.source.lineCounter = lineCounter;
  telling(piece.source);
  return piece.messages();
}

std::string reported(int code, const std::string &line, int position) {
  return onLine(line, position, [&](SourceReader &source) { reportError(source, code); });
}

std::string warned(int code, const std::string &line, int position, bool silent = false) {
  return onLine(line, position, [&](SourceReader &source) {
    source.messages->silent = silent;
    warn(source, code);
  });
}

TEST(SourceReader, LineAndCaret) {
  struct {
    const char *line;
    int position;
    const char *shown;
  } rows[] = {
      {"ab\tcd", 3, "ab\tcd\n  \t^\n"},
      {"abc", 0, "abc\n^\n"},
      {"abc", 2, "abc\n  ^\n"},
      {"abc", 3, "abc\n   \n"},  // behind the line: blanks under all of it, no caret
      {"abc", 99, "abc\n   \n"},
      {"abc", -1, "abc\n\n"},
      {"a\tb", 1, "a\tb\n ^\n"},
      {"\t\t", 1, "\t\t\n\t^\n"},
      {"\t\t", 2, "\t\t\n\t\t\n"},
      {"", 0, "\n\n"},
      {"", 5, "\n\n"},
      {"a\nb", 2, "aLb\n  ^\n"},
      {"\n", 0, "L\n^\n"},
      {" ", 0, " \n^\n"},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(reported(1000, row.line, row.position), row.shown)
        << row.line << " at " << row.position;
  }
}

TEST(SourceReader, TheLongestLineIsShownWhole) {
  std::string line(4095, 'x');
  EXPECT_EQ(reported(1000, line, 4094), line + "\n" + std::string(4094, ' ') + "^\n");
  EXPECT_EQ(reported(1000, line, 4095), line + "\n" + std::string(4095, ' ') + "\n");
}

TEST(SourceReader, ErrorsTakeTheFormThatTheirNumberSays) {
  for (int code = -20; code <= 1020; ++code) {
    std::string expected;
    if (code == 1000) {
      expected = "line\n  ^\n";
    } else if (code != 999) {
      expected = code < 10 ? std::string("\nERROR: ") + errorText(code) + "\n\n"
                           : std::string("\n\nERROR: Line 7: ") + errorText(code) + "\nline\n  ^\n";
    }
    EXPECT_EQ(reported(code, "line", 2), expected) << code;
  }
}

TEST(SourceReader, ErrorsInFull) {
  EXPECT_EQ(reported(25, "ab\tcd", 3),
            "\n\nERROR: Line 7: Reached EOF! (missing comment \"*/\"?)\nab\tcd\n  \t^\n");
  EXPECT_EQ(reported(66, "x", 0), "\n\nERROR: Line 7: Unspecified error...\nx\n^\n");
  EXPECT_EQ(reported(6, "x", 0), "\nERROR: Unspecified error...\n\n");
  EXPECT_EQ(reported(0, "x", 0), "\nERROR: Unspecified error...\n\n");
  EXPECT_EQ(reported(9, "x", 0), "\nERROR: Ouch! Can't open the temporary file (huh?).\n\n");
  EXPECT_EQ(reported(10, "", 0), "\n\nERROR: Line 7: \"i\" must be followed by a number\n\n\n");
  EXPECT_EQ(reported(999, "x", 0), "");
  EXPECT_EQ(reported(113, "y", 0),
            "\n\nERROR: Line 7: Error in \"#endif\" Statement. \n(N.B. #if and #endif must be "
            "isolated to their own lines\nwith no other data than whitespace.)\ny\n^\n");
}

TEST(SourceReader, LineNumbersMayBeVeryLarge) {
  EXPECT_EQ(onLine(
                "x", 0, [](SourceReader &source) { reportError(source, 23); }, 5000000000),
            "\n\nERROR: Line 5000000000: Value out of bounds or syntax error.\nx\n^\n");
}

TEST(SourceReader, ErrorsAppearUnderSilent) {
  EXPECT_EQ(onLine("x", 0,
                   [](SourceReader &source) {
                     source.messages->silent = true;
                     reportError(source, 19);
                   }),
            "\n\nERROR: Line 7: Missing \")\".\nx\n^\n");
}

TEST(SourceReader, WarningsTakeTheFormThatTheirNumberSays) {
  for (int code = -3; code <= 60; ++code) {
    std::string expected =
        code < 10 ? std::string("\nWARNING: ") + warningText(code)
                  : std::string("\n\nWARNING: Line 7: ") + warningText(code) + "\nline\n^\n";
    EXPECT_EQ(warned(code, "line", 0), expected) << code;
    EXPECT_EQ(warned(code, "line", 0, true), "") << code;
  }
}

TEST(SourceReader, WarningsInFull) {
  EXPECT_EQ(warned(1, "x", 0), "\nWARNING: P3 Duration < 0! (Event turned into rest...)");
  EXPECT_EQ(warned(3, "x", 0), "\nWARNING: Unspecified warning...");
  EXPECT_EQ(warned(36, "x", 1), "\n\nWARNING: Line 7: Unspecified warning...\nx\n \n");
  EXPECT_EQ(warned(10, "1 2", 2),
            "\n\nWARNING: Line 7: Reached end of i-time or i-events -- event(s) not added.\n"
            "1 2\n  ^\n");
}

}  // namespace

}  // namespace korvo
