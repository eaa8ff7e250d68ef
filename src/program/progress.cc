// What a run tells of itself and the clock come in, now and then a line goes to the terminal.
#include "program/progress.h"

#include <chrono>
#include <cstdio>

namespace {

constexpr std::int64_t kQuietTime = 1000;    // milliseconds before a block shows its line
constexpr std::int64_t kBetweenLines = 200;  // milliseconds between two drawings

std::int64_t milliseconds() {
  auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

}  // namespace

void drawProgress(ProgressLine &line, Screen &screen, const korvo::Progress &progress) {
  std::int64_t now = milliseconds();
  if (progress.steps == 0) {
    line = {now, 0};
    return;
  }
  std::int64_t elapsed = now - line.began;
  if (elapsed < kQuietTime || now - line.drawn < kBetweenLines) {
    return;
  }
  line.drawn = now;
  std::int64_t rate = static_cast<std::int64_t>(progress.steps) * 1000 / elapsed;
  char text[120];
  std::snprintf(text, sizeof text, "block #%d, %s: %lld of %lld events, %lld/s", progress.block,
                progress.stage, static_cast<long long>(progress.done),
                static_cast<long long>(progress.events), static_cast<long long>(rate));
  showPassingLine(screen, text);
}
