// The screen and the log. What a run says goes to standard error, a few lines to standard output,
// all but these into the log.
//
// Messages are gathered in one buffer: a message costs at most one write, on a terminal exactly
// one. Lines for standard output pass through the same buffer, so that both streams keep their true
// order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "program/written_file.h"

struct Screen {
  // Without a file when there is no -l. All that is said before the includes have been read has
  // room in it, so that until then nothing is written into a file that turns out to be one of them.
  WrittenFile log;
  // Where the gathered bytes belong: stderr or stdout; null when there are none.
  std::FILE *stream = nullptr;
  std::size_t used = 0;
  std::int64_t shown = 0;   // bytes of all messages so far
  bool isTerminal = false;  // standard error is a terminal: every message is written at once
  bool lineShown = false;   // a passing line stands on the terminal
  char bytes[1 << 16];
};

// Shows a message, which goes into the log, too.
void show(Screen &screen, const char *text, std::size_t length);

// Shows it on standard output only.
void showOnStandardOutput(Screen &screen, const char *text, std::size_t length);

// Shows `line` on the terminal in place of the passing line shown before it. The next message wipes
// it away.
void showPassingLine(Screen &screen, const char *line);

// Writes out what has been gathered.
void flushScreen(Screen &screen);
