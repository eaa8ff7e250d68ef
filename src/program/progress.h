// A line that shows on a terminal that large work lives: a block that takes longer than a second
// has one, with its number, its events and their rate, redrawn in place. It is no message: it never
// reaches the log, is gone before the next message, and does not exist under -s or when standard
// error is no terminal.
#pragma once

#include <cstdint>

#include "korvo/korvo.h"
#include "program/screen.h"

struct ProgressLine {
  std::int64_t began = 0;  // milliseconds, when the block began
  std::int64_t drawn = 0;  // milliseconds, when the line was drawn last
};

// Begins a block, or redraws the line if it is time.
void drawProgress(ProgressLine &line, Screen &screen, const korvo::Progress &progress);
