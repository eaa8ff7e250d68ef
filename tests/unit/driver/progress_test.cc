#include "base/progress.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "driver/run_state.h"
#include "support/capture.h"
#include "support/memory_file.h"

namespace {

// A run at a terminal whose block has taken `age` milliseconds so far.
std::string onTerminal(std::int64_t age, const std::function<void(RunState &)> &work,
                       bool terminal = true, bool silent = false, std::FILE *log = nullptr) {
  auto run = std::make_unique<RunState>();
  run->screen.isTerminal = terminal;
  run->screen.log.file = log;
  run->options.silent = silent;
  beginProgress(*run);
  run->progress.began -= age;
  Capture capture({2});
  work(*run);
  flushScreen(run->screen);
  if (log != nullptr) {
    flushOutput(run->screen.log);
  }
  return capture.text();
}

void draw(RunState &run) { drawProgress(run, "P3", 1234); }

TEST(Progress, ShowsBlockStageAndEventsOnceABlockIsLong) {
  std::string shown = onTerminal(5000, draw);
  EXPECT_NE(shown.find("block #1, P3: 1234 of 0 events"), std::string::npos) << shown;
}

TEST(Progress, SaysNothingInTheFirstSecond) { EXPECT_EQ(onTerminal(500, draw), ""); }

TEST(Progress, SaysNothingWithoutATerminalOrUnderSilent) {
  EXPECT_EQ(onTerminal(5000, draw, false), "");
  EXPECT_EQ(onTerminal(5000, draw, true, true), "");
}

TEST(Progress, DoesNotDrawTwiceInARow) {
  EXPECT_EQ(onTerminal(5000,
                       [](RunState &run) {
                         draw(run);
                         draw(run);
                       }),
            onTerminal(5000, draw));
}

TEST(Progress, IsWipedByTheNextMessageAndOnlyOnce) {
  std::string shown = onTerminal(5000, draw);
  std::string after = onTerminal(5000, [](RunState &run) {
    draw(run);
    say(run.screen, "message");
    say(run.screen, " again");
  });
  EXPECT_EQ(after, shown + "\0338\033[Jmessage again");
}

TEST(Progress, NeverReachesTheLog) {
  MemoryFile log;
  onTerminal(
      5000,
      [](RunState &run) {
        draw(run);
        say(run.screen, "message");
      },
      true, false, log.file());
  EXPECT_EQ(log.text(), "message");
}

TEST(Progress, LooksAtTheClockNowAndThen) {
  Progress progress;
  int looks = 0;
  for (int i = 0; i < 1 << 18; ++i) {
    looks += countProgress(progress) ? 1 : 0;
  }
  EXPECT_GT(looks, 0);
  EXPECT_LT(looks, 1000);
  EXPECT_EQ(progress.steps, 1U << 18);
}

}  // namespace
