#include "program/progress.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "support/capture.h"
#include "support/memory_file.h"

namespace {

struct Terminal {
  ProgressLine line;
  Screen screen;

  void draw() { drawProgress(line, screen, {1, "P3", 1234, 5678, 32768}); }
  void say(const std::string &text) { show(screen, text.data(), text.size()); }
};

// What a terminal shows when its block has taken `age` milliseconds so far.
std::string onTerminal(std::int64_t age, const std::function<void(Terminal &)> &work,
                       std::FILE *log = nullptr) {
  auto terminal = std::make_unique<Terminal>();
  terminal->screen.isTerminal = true;
  terminal->screen.log.file = log;
  drawProgress(terminal->line, terminal->screen, {1, "", 0, 0, 0});
  terminal->line.began -= age;
  Capture capture({2});
  work(*terminal);
  flushScreen(terminal->screen);
  if (log != nullptr) {
    closeWritten(terminal->screen.log, true);
  }
  return capture.text();
}

void draw(Terminal &terminal) { terminal.draw(); }

TEST(Progress, ShowsBlockStageAndEventsOnceABlockIsLong) {
  std::string shown = onTerminal(5000, draw);
  EXPECT_NE(shown.find("block #1, P3: 1234 of 5678 events"), std::string::npos) << shown;
}

TEST(Progress, SaysHowManyStepsComeInASecond) {
  std::string shown = onTerminal(1000000000, draw);  // 32768 in a million seconds
  EXPECT_NE(shown.find(" events, 0/s"), std::string::npos) << shown;
  shown = onTerminal(1000000000, [](Terminal &terminal) {
    drawProgress(terminal.line, terminal.screen, {1, "P3", 0, 0, 7500000});
  });
  EXPECT_NE(shown.find(" events, 7/s"), std::string::npos) << shown;
}

TEST(Progress, SaysNothingInTheFirstSecond) { EXPECT_EQ(onTerminal(500, draw), ""); }

TEST(Progress, DoesNotDrawTwiceInARow) {
  EXPECT_EQ(onTerminal(1000000000,
                       [](Terminal &terminal) {
                         terminal.draw();
                         terminal.draw();
                       }),
            onTerminal(1000000000, draw));
}

TEST(Progress, EveryBlockHasItsFirstSecond) {
  EXPECT_EQ(onTerminal(5000,
                       [](Terminal &terminal) {
                         drawProgress(terminal.line, terminal.screen, {2, "", 0, 0, 0});
                         terminal.draw();
                       }),
            "");
}

TEST(Progress, IsWipedByTheNextMessageAndOnlyOnce) {
  std::string shown = onTerminal(1000000000, draw);
  std::string after = onTerminal(1000000000, [](Terminal &terminal) {
    terminal.draw();
    terminal.say("message");
    terminal.say(" again");
  });
  EXPECT_EQ(after, shown + "\0338\033[Jmessage again");
}

TEST(Progress, NeverReachesTheLog) {
  MemoryFile log;
  onTerminal(
      5000,
      [](Terminal &terminal) {
        terminal.draw();
        terminal.say("message");
      },
      log.file());
  log.wasClosed();
  EXPECT_EQ(log.text(), "message");
}

}  // namespace
