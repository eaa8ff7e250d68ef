#include "preproc/source_reader.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <iterator>
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

// What reading a text line by line with `fgets` comes to: every line, cleaned by hand, and whether
// the end was met after it. `feof` is looked at before the next line, as `inputEnded` is.
struct Line {
  std::string text;
  bool ended;
  bool operator==(const Line &) const = default;
};

std::vector<Line> linesOfLibrary(std::string text) {
  std::vector<Line> lines;
  std::FILE *file =
      text.empty() ? std::fopen("/dev/null", "r") : fmemopen(text.data(), text.size(), "r");
  char line[kLineBytes];
  while (std::fgets(line, sizeof line, file) != nullptr) {
    for (char *c = line; *c != '\0'; ++c) {
      *c = *c == '\n' || *c == '\r' || *c == '\xff' ? ' ' : *c;
    }
    lines.push_back({line, std::feof(file) != 0});
  }
  EXPECT_EQ(std::ferror(file), 0);
  std::fclose(file);
  return lines;
}

// The lines of the text, whose host hands it over in parts of so many bytes.
std::vector<Line> fetched(const std::string &text, std::size_t part) {
  Piece piece(text);
  piece.text.part = part;
  std::vector<Line> lines;
  ErrorCode error = kOk;
  while ((error = fetchLine(piece.source)) == kOk) {
    lines.push_back({piece.line(), inputEnded(piece.source)});
    EXPECT_EQ(piece.source.lineCounter, static_cast<std::int64_t>(lines.size()));
  }
  EXPECT_EQ(error, kEndOfInput);
  EXPECT_TRUE(inputEnded(piece.source));
  return lines;
}

std::string randomText(std::mt19937 &random) {
  const int kLengths[] = {0, 1, 2, 5, 80, 4093, 4094, 4095, 4096, 4097, 8190, 8191, 9000};
  const char kBytes[] = {'a', ' ', '\r', '\xff', '\t', '\0', '#'};
  std::string text;
  for (int left = static_cast<int>(random() % 6); left > 0; --left) {
    int length = kLengths[random() % std::size(kLengths)];
    length = random() % 4 == 0 ? static_cast<int>(random() % 9001) : length;
    std::size_t kinds = random() % 2 == 0 ? 1 : std::size(kBytes);
    for (int i = 0; i < length; ++i) {
      text += kBytes[random() % kinds];
    }
    text += left > 1 || random() % 2 == 0 ? "\n" : "";
  }
  return text;
}

TEST(SourceReader, FetchesTheLinesThatTheLibraryGets) {
  std::mt19937 random(1);
  for (int i = 0; i < 3000; ++i) {
    std::string text = randomText(random);
    std::size_t part = random() % 3 == 0 ? 1 + random() % 40 : 1 + random() % 20000;
    ASSERT_TRUE(fetched(text, part) == linesOfLibrary(text)) << i;
  }
}

TEST(SourceReader, FetchesTheSameLinesWhereverTheHostsPartsEnd) {
  std::string text = std::string("a\n\nbc\r\n") + std::string(4095, 'd') + "\n" +
                     std::string(4094, 'e') + "\n" + std::string("f\0g\nh", 5);
  std::vector<Line> expected = linesOfLibrary(text);
  ASSERT_EQ(expected.size(), 8U);
  EXPECT_TRUE((expected[4] == Line{" ", false}));
  EXPECT_TRUE((expected[6] == Line{"f", false}));
  EXPECT_TRUE((expected[7] == Line{"h", true}));
  for (std::size_t part : {1U, 2U, 3U, 7U, 100U, 4094U, 4095U, 4096U, 4097U, 8000U, 16384U}) {
    EXPECT_TRUE(fetched(text, part) == expected) << part;
  }
}

TEST(SourceReader, TheEndIsMetWhenReadingOnFindsNothing) {
  struct {
    std::string text;
    std::vector<bool> ended;  // behind each line
  } rows[] = {
      {"", {}},
      {"a", {true}},
      {"a\n", {false}},
      {"a\nb", {false, true}},
      {std::string(4094, 'x'), {true}},
      {std::string(4095, 'x'), {false}},  // the line is full before anything is missed
      {std::string(4095, 'x') + "\n", {false, false}},
  };
  for (const auto &row : rows) {
    std::vector<bool> ended;
    for (const Line &line : fetched(row.text, 1000)) {
      ended.push_back(line.ended);
    }
    EXPECT_EQ(ended, row.ended) << row.text.size();
  }
}

// The host fails behind `text`.
TEST(SourceReader, ATextThatCannotBeReadOn) {
  struct {
    std::string text;
    int lines;  // that come whole before the failure
  } rows[] = {
      {"", 0},
      {"a", 0},
      {"a\n", 1},
      {"a\nb\nc", 2},
      {std::string(4094, 'x'), 0},
      {std::string(4095, 'x'), 1},
      {std::string(20000, 'x') + "\n", 5},
  };
  for (const auto &row : rows) {
    for (std::size_t part : {1U, 1000U, 100000U}) {
      Piece piece(row.text);
      piece.text.part = part;
      piece.text.fails = true;
      for (int i = 0; i < row.lines; ++i) {
        EXPECT_EQ(fetchLine(piece.source), kOk) << row.text.size();
      }
      EXPECT_EQ(piece.source.lineCounter, row.lines);
      for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(fetchLine(piece.source), kTemporaryFileLost) << row.text.size();
        EXPECT_FALSE(inputEnded(piece.source));
      }
      EXPECT_EQ(piece.source.lineCounter, row.lines);
    }
  }
}

TEST(SourceReader, ALineBeginsAnew) {
  Piece piece("ab\ncd\n");
  EXPECT_EQ(fetchLine(piece.source), kOk);
  piece.source.position = 2;
  piece.source.expansions = 7;
  piece.source.marked[0] = true;
  piece.source.marked[5] = true;
  piece.source.markedLength = 6;
  EXPECT_EQ(fetchLine(piece.source), kOk);
  EXPECT_EQ(piece.line(), "cd ");
  EXPECT_EQ(piece.source.position, 0);
  EXPECT_EQ(piece.source.expansions, 0);
  EXPECT_EQ(piece.source.markedLength, 0);
  EXPECT_FALSE(piece.source.marked[0]);
  EXPECT_FALSE(piece.source.marked[5]);
}

TEST(SourceReader, FetchesNothingForARunThatHasExpandedTooMuch) {
  for (bool byCharacters : {false, true}) {
    Piece piece("a\nb\n");
    ExpansionCount &spent = piece.source.spent;
    (byCharacters ? spent.characters : spent.expansions) =
        byCharacters ? kMaxExpandedInRun : kMaxExpansionsInRun;
    EXPECT_EQ(fetchLine(piece.source), kOk);
    ++(byCharacters ? spent.characters : spent.expansions);
    EXPECT_EQ(fetchLine(piece.source), kOutOfMemory);
    EXPECT_EQ(piece.line(), "a ");
  }
}

}  // namespace

}  // namespace korvo
