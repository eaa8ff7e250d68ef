#include "base/messages.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <string>

#include "korvo/korvo.h"
#include "driver/run_state.h"
#include "preproc/source_reader.h"
#include "support/capture.h"
#include "support/memory_file.h"

namespace {

// What `tell` puts on standard error.
std::string onScreen(const std::function<void(RunState &)> &tell) {
  auto run = std::make_unique<RunState>();
  Capture capture({2});
  tell(*run);
  flushScreen(run->screen);
  return capture.text();
}

std::string said(const char *format, std::initializer_list<MessageArgument> arguments = {}) {
  return onScreen([&](RunState &run) { say(run.screen, format, arguments); });
}

std::unique_ptr<SourceReader> readerAt(const std::string &line, int position,
                                       std::int64_t lineCounter = 7) {
  auto source = std::make_unique<SourceReader>();
  std::memcpy(source->line, line.c_str(), line.size() + 1);
  source->position = position;
  source->lineCounter = lineCounter;
  return source;
}

std::string reported(int code, const std::string &line, int position) {
  auto source = readerAt(line, position);
  return onScreen([&](RunState &run) { reportError(run, *source, code); });
}

std::string warned(int code, const std::string &line, int position, bool silent = false) {
  auto source = readerAt(line, position);
  return onScreen([&](RunState &run) {
    run.options.silent = silent;
    warn(run, *source, code);
  });
}

TEST(Messages, PlainTextComesOutAsItIs) {
  EXPECT_EQ(said(""), "");
  EXPECT_EQ(said("\n\tabc \\ \"x\"\n"), "\n\tabc \\ \"x\"\n");
}

TEST(Messages, CharactersAndTexts) {
  EXPECT_EQ(said("a%cb%c", {'x', '%'}), "axb%");
  EXPECT_EQ(said("<%s><%s>", {"", "100%d %s"}), "<><100%d %s>");
}

TEST(Messages, Integers) {
  EXPECT_EQ(said("%d %d %d", {0, -1, 12}), "0 -1 12");
  EXPECT_EQ(said("%d|%d", {std::numeric_limits<std::int64_t>::min(),
                           std::numeric_limits<std::int64_t>::max()}),
            "-9223372036854775808|9223372036854775807");
}

TEST(Messages, RealsAreSevenWideWithTwoDecimals) {
  struct {
    double value;
    const char *text;
  } rows[] = {
      {0.0, "   0.00"},          {-0.0, "  -0.00"},       {3.14159, "   3.14"},
      {-3.14159, "  -3.14"},     {12345.678, "12345.68"}, {9999.994, "9999.99"},
      {1000000.0, "1000000.00"}, {0.125, "   0.12"},  // exactly between two: the even one
      {0.375, "   0.38"},        {-0.001, "  -0.00"},     {1e20, "100000000000000000000.00"},
      {HUGE_VAL, "    inf"},     {-HUGE_VAL, "   -inf"},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(said("%f", {row.value}), row.text);
  }
  EXPECT_EQ(said("[%f]", {0.1F}), "[   0.10]");
  EXPECT_EQ(said("%f", {std::numeric_limits<double>::quiet_NaN()}), "    nan");
}

TEST(Messages, TheLargestRealHasAllItsDigits) {
  char expected[400];
  std::snprintf(expected, sizeof expected, "%.2f", -std::numeric_limits<double>::max());
  EXPECT_EQ(said("%f", {-std::numeric_limits<double>::max()}), expected);
}

TEST(Messages, WidthsAndUnknownConversionsArePrintedAndTakeNoArgument) {
  EXPECT_EQ(said("100%%"), "100%");
  EXPECT_EQ(said("100%"), "100");
  EXPECT_EQ(said("%5d|%d", {7}), "5d|7");
  EXPECT_EQ(said("%.2f|%f", {7.0}), ".2f|   7.00");
  EXPECT_EQ(said("%ld|%d", {7}), "ld|7");
  EXPECT_EQ(said("%x%D%S%d", {7}), "xDS7");
}

TEST(Messages, LongTextsArriveWhole) {
  std::string longText;
  for (int i = 0; i < 200000; ++i) {
    longText += static_cast<char>('a' + i % 26);
  }
  EXPECT_EQ(said("<%s>%s", {longText.c_str(), "end"}), "<" + longText + ">end");
}

TEST(Messages, ManyShortTextsArriveInOrder) {
  std::string expected;
  std::string screen = onScreen([&](RunState &run) {
    for (int i = 0; i < 30000; ++i) {
      say(run.screen, "%d,", {i});
      expected += std::to_string(i) + ",";
    }
  });
  EXPECT_EQ(screen, expected);
}

TEST(Messages, StandardOutputAndStandardErrorKeepTheirTrueOrder) {
  auto run = std::make_unique<RunState>();
  Capture capture({1, 2});
  say(run->screen, "one ");
  sayOnStandardOutput(run->screen, "two ", 4);
  sayOnStandardOutput(run->screen, "three ", 6);
  say(run->screen, "four ");
  sayOnStandardOutput(run->screen, "five", 4);
  flushScreen(run->screen);
  EXPECT_EQ(capture.text(), "one two three four five");
}

TEST(Messages, OnlyWhatIsMeantForStandardOutputGoesThere) {
  auto run = std::make_unique<RunState>();
  Capture error({2});
  Capture output({1});
  say(run->screen, "screen");
  sayOnStandardOutput(run->screen, "\ntime =    1.00", 15);
  say(run->screen, "again");
  flushScreen(run->screen);
  EXPECT_EQ(output.text(), "\ntime =    1.00");
  EXPECT_EQ(error.text(), "screenagain");
}

TEST(Messages, ATerminalSeesEveryMessageAtOnce) {
  auto run = std::make_unique<RunState>();
  run->screen.isTerminal = true;
  Capture capture({2});
  say(run->screen, "now");
  EXPECT_EQ(capture.text(), "now");
}

TEST(Messages, TheLogGetsTheSameCharacters) {
  auto source = readerAt("a\tb", 2);
  MemoryFile log;
  std::string screen = onScreen([&](RunState &run) {
    run.screen.log.file = log.file();
    say(run.screen, "\nx %d %f %s %c %%\n", {5, 1.5, "text", '!'});
    reportError(run, *source, 25);
    reportError(run, *source, 4);
    reportError(run, *source, 1000);
    warn(run, *source, 2);
    warn(run, *source, 26);
    flushOutput(run.screen.log);
  });
  EXPECT_EQ(log.text(), screen);
  EXPECT_EQ(screen,
            "\nx 5    1.50 text ! %\n"
            "\n\nERROR: Line 7: Reached EOF! (missing comment \"*/\"?)\na\tb\n \t^\n"
            "\nERROR: P-fields don't match i-block header!\n\n"
            "a\tb\n \t^\n"
            "\nWARNING: I-block skipped! (i-no < 0)"
            "\n\nWARNING: Line 7: Yowza! Should RD be > 1 (100%)?\na\tb\n \t^\n");
}

TEST(Messages, StandardOutputDoesNotReachTheLog) {
  MemoryFile log;
  auto run = std::make_unique<RunState>();
  run->screen.log.file = log.file();
  Capture capture({1});
  sayOnStandardOutput(run->screen, "abc", 3);
  flushScreen(run->screen);
  flushOutput(run->screen.log);
  EXPECT_EQ(capture.text(), "abc");
  EXPECT_EQ(log.text(), "");
}

TEST(Messages, LineAndCaret) {
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

TEST(Messages, TheLongestLineIsShownWhole) {
  std::string line(4095, 'x');
  EXPECT_EQ(reported(1000, line, 4094), line + "\n" + std::string(4094, ' ') + "^\n");
  EXPECT_EQ(reported(1000, line, 4095), line + "\n" + std::string(4095, ' ') + "\n");
}

TEST(Messages, ErrorsTakeTheFormThatTheirNumberSays) {
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

TEST(Messages, ErrorsInFull) {
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

TEST(Messages, LineNumbersMayBeVeryLarge) {
  auto source = readerAt("x", 0, 5000000000);
  EXPECT_EQ(onScreen([&](RunState &run) { reportError(run, *source, 23); }),
            "\n\nERROR: Line 5000000000: Value out of bounds or syntax error.\nx\n^\n");
}

TEST(Messages, ErrorsAppearUnderSilent) {
  auto source = readerAt("x", 0);
  EXPECT_EQ(onScreen([&](RunState &run) {
              run.options.silent = true;
              reportError(run, *source, 19);
            }),
            "\n\nERROR: Line 7: Missing \")\".\nx\n^\n");
}

TEST(Messages, WarningsTakeTheFormThatTheirNumberSays) {
  for (int code = -3; code <= 60; ++code) {
    std::string expected =
        code < 10 ? std::string("\nWARNING: ") + warningText(code)
                  : std::string("\n\nWARNING: Line 7: ") + warningText(code) + "\nline\n^\n";
    EXPECT_EQ(warned(code, "line", 0), expected) << code;
    EXPECT_EQ(warned(code, "line", 0, true), "") << code;
  }
}

TEST(Messages, WarningsInFull) {
  EXPECT_EQ(warned(1, "x", 0), "\nWARNING: P3 Duration < 0! (Event turned into rest...)");
  EXPECT_EQ(warned(3, "x", 0), "\nWARNING: Unspecified warning...");
  EXPECT_EQ(warned(36, "x", 1), "\n\nWARNING: Line 7: Unspecified warning...\nx\n \n");
  EXPECT_EQ(warned(10, "1 2", 2),
            "\n\nWARNING: Line 7: Reached end of i-time or i-events -- event(s) not added.\n"
            "1 2\n  ^\n");
}

}  // namespace
