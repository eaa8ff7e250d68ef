#include "program/screen.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <string>

#include "support/capture.h"
#include "support/memory_file.h"

namespace {

void put(Screen &screen, const std::string &text) { show(screen, text.data(), text.size()); }

void putOut(Screen &screen, const std::string &text) {
  showOnStandardOutput(screen, text.data(), text.size());
}

// What `tell` puts on these streams.
std::string onScreen(std::initializer_list<int> streams,
                     const std::function<void(Screen &)> &tell) {
  auto screen = std::make_unique<Screen>();
  Capture capture(streams);
  tell(*screen);
  flushScreen(*screen);
  return capture.text();
}

TEST(Screen, LongTextsArriveWhole) {
  std::string longText;
  for (int i = 0; i < 200000; ++i) {
    longText += static_cast<char>('a' + i % 26);
  }
  EXPECT_EQ(onScreen({2},
                     [&](Screen &screen) {
                       put(screen, "<");
                       put(screen, longText);
                       put(screen, ">end");
                     }),
            "<" + longText + ">end");
}

TEST(Screen, ManyShortTextsArriveInOrder) {
  std::string expected;
  std::string shown = onScreen({2}, [&](Screen &screen) {
    for (int i = 0; i < 30000; ++i) {
      put(screen, std::to_string(i) + ",");
      expected += std::to_string(i) + ",";
    }
  });
  EXPECT_EQ(shown, expected);
}

TEST(Screen, AnyByteIsShown) {
  std::string bytes;
  for (int c = 0; c < 256; ++c) {
    bytes += static_cast<char>(c);
  }
  EXPECT_EQ(onScreen({2}, [&](Screen &screen) { put(screen, bytes); }), bytes);
}

TEST(Screen, StandardOutputAndStandardErrorKeepTheirTrueOrder) {
  EXPECT_EQ(onScreen({1, 2},
                     [](Screen &screen) {
                       put(screen, "one ");
                       putOut(screen, "two ");
                       putOut(screen, "three ");
                       put(screen, "four ");
                       putOut(screen, "five");
                     }),
            "one two three four five");
}

TEST(Screen, OnlyWhatIsMeantForStandardOutputGoesThere) {
  auto screen = std::make_unique<Screen>();
  Capture error({2});
  Capture output({1});
  put(*screen, "screen");
  putOut(*screen, "\ntime =    1.00");
  put(*screen, "again");
  flushScreen(*screen);
  EXPECT_EQ(output.text(), "\ntime =    1.00");
  EXPECT_EQ(error.text(), "screenagain");
}

TEST(Screen, ATerminalSeesEveryMessageAtOnce) {
  auto screen = std::make_unique<Screen>();
  screen->isTerminal = true;
  Capture capture({2});
  put(*screen, "now");
  EXPECT_EQ(capture.text(), "now");
}

TEST(Screen, WithoutATerminalMessagesAreGathered) {
  auto screen = std::make_unique<Screen>();
  Capture early({2});
  put(*screen, "later");
  EXPECT_EQ(early.text(), "");
  Capture late({2});
  flushScreen(*screen);
  EXPECT_EQ(late.text(), "later");
}

// What reaches the log, and what the screen shows meanwhile.
struct Logged {
  std::string log;
  std::string screen;
};

Logged logged(std::initializer_list<int> streams, const std::function<void(Screen &)> &tell) {
  MemoryFile log;
  Logged result;
  result.screen = onScreen(streams, [&](Screen &screen) {
    screen.log.file = log.file();
    tell(screen);
    EXPECT_TRUE(closeWritten(screen.log, true));
  });
  log.wasClosed();
  result.log = log.text();
  return result;
}

TEST(Screen, TheLogGetsTheSameCharacters) {
  Logged result = logged({2}, [](Screen &screen) {
    put(screen, "\nx 5    1.50 text ! %\n");
    put(screen, std::string(300000, 'x'));
    put(screen, "a\tb\n \t^\n");
  });
  EXPECT_EQ(result.log, "\nx 5    1.50 text ! %\n" + std::string(300000, 'x') + "a\tb\n \t^\n");
  EXPECT_EQ(result.log, result.screen);
}

TEST(Screen, StandardOutputDoesNotReachTheLog) {
  Logged result = logged({1}, [](Screen &screen) { putOut(screen, "abc"); });
  EXPECT_EQ(result.screen, "abc");
  EXPECT_EQ(result.log, "");
}

TEST(Screen, APassingLineIsWipedByTheNextMessageAndOnlyOnce) {
  EXPECT_EQ(onScreen({2},
                     [](Screen &screen) {
                       screen.isTerminal = true;
                       put(screen, "before");
                       showPassingLine(screen, "passing");
                       put(screen, "message");
                       put(screen, " again");
                     }),
            "before\0337  passing\0338\033[Jmessage again");
}

TEST(Screen, APassingLineTakesThePlaceOfTheOneBefore) {
  EXPECT_EQ(onScreen({2},
                     [](Screen &screen) {
                       screen.isTerminal = true;
                       showPassingLine(screen, "first");
                       showPassingLine(screen, "second");
                     }),
            "\0337  first\0338\033[J\0337  second");
}

TEST(Screen, APassingLineIsWipedByStandardOutputToo) {
  EXPECT_EQ(onScreen({1, 2},
                     [](Screen &screen) {
                       screen.isTerminal = true;
                       showPassingLine(screen, "passing");
                       std::fflush(stderr);
                       putOut(screen, "text");
                     }),
            "\0337  passing\0338\033[Jtext");
}

}  // namespace
