// A sign of life during large work: on a terminal, a block that takes longer than a second shows
// one line with its number, its events and their rate, redrawn in place. It is no message: it never
// reaches the log, is gone before the next message, and does not exist under -s or when standard
// error is no terminal.
#pragma once

#include <cstdint>

struct RunState;

struct Progress {
  std::uint64_t steps = 0;  // values and lines since the block began
  std::int64_t began = 0;   // milliseconds, when the block began
  std::int64_t drawn = 0;   // milliseconds, when the line was drawn last
};

// Begins a block.
void beginProgress(RunState &run);

// Redraws the line if it is time. `done` events of the block have got through `stage`.
void drawProgress(RunState &run, const char *stage, std::int64_t done);

// Counts one value or line; true now and then, when it is worth looking at the clock.
inline bool countProgress(Progress &progress) {
  constexpr std::uint64_t kStepsBetweenLooks = 1U << 15;
  return ++progress.steps % kStepsBetweenLooks == 0;
}
