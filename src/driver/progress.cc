// A count and the clock come in, now and then a line goes to the terminal.
#include "driver/progress.h"

#include <chrono>
#include <cstdio>

#include "driver/run_state.h"

namespace {

constexpr std::int64_t kQuietTime = 1000;    // milliseconds before a block shows its line
constexpr std::int64_t kBetweenLines = 200;  // milliseconds between two drawings

std::int64_t milliseconds() {
  auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

}  // namespace

void beginProgress(RunState &run) {
  run.progress = Progress{};
  run.progress.began = milliseconds();
}

void drawProgress(RunState &run, const char *stage, std::int64_t done) {
  if (!run.screen.isTerminal || run.options.silent) {
    return;
  }
  std::int64_t now = milliseconds();
  std::int64_t elapsed = now - run.progress.began;
  if (elapsed < kQuietTime || now - run.progress.drawn < kBetweenLines) {
    return;
  }
  run.progress.drawn = now;
  std::int64_t rate = static_cast<std::int64_t>(run.progress.steps) * 1000 / elapsed;
  char line[120];
  std::snprintf(line, sizeof line, "block #%d, %s: %lld of %lld events, %lld/s", run.block.number,
                stage, static_cast<long long>(done), static_cast<long long>(run.events.count),
                static_cast<long long>(rate));
  showPassingLine(run.screen, line);
}
