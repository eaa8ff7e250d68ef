// The one way to the screen. Every message goes through `say`, which writes to standard error and,
// with -l, to the log. Errors and warnings take their text from the catalogue and show the line
// they stand on with a caret under the position.
//
// Messages are gathered in one buffer: a message costs at most one write, on a terminal exactly
// one. The few lines that belong on standard output pass through the same buffer, so that both
// streams keep their true order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <initializer_list>

#include "driver/error_code.h"
#include "output/output_buffer.h"

struct RunState;
struct SourceReader;

// A run says no more than this many bytes, give or take what it says about one line: a short text
// can ask for a warning, with its line of 4,000 characters, in every few of its characters.
inline constexpr std::int64_t kMaxMessagesInRun = 3221225472;

struct Screen {
  // Its stream is null without -l. All that is said before the includes have been read has room in
  // it, so that until then nothing is written into a file that turns out to be one of them.
  OutputBuffer log;
  // Where the gathered bytes belong: stderr or stdout; null when there are none.
  std::FILE *stream = nullptr;
  std::size_t used = 0;
  std::int64_t printed = 0;  // bytes of all messages of the run so far
  bool isTerminal = false;   // standard error is a terminal: every message is written at once
  bool lineShown = false;    // a passing line stands on the terminal
  char bytes[1 << 16];
};

// One argument of a message: a character, an integer, a real number or a text.
struct MessageArgument {
  enum Kind { kCharacter, kInteger, kReal, kText } kind;
  std::int64_t integer = 0;
  double real = 0.0;
  const char *text = nullptr;

  MessageArgument(char c) : kind(kCharacter), integer(c) {}
  MessageArgument(int i) : kind(kInteger), integer(i) {}
  MessageArgument(std::int64_t i) : kind(kInteger), integer(i) {}
  MessageArgument(double r) : kind(kReal), real(r) {}
  MessageArgument(float r) : kind(kReal), real(static_cast<double>(r)) {}
  MessageArgument(const char *t) : kind(kText), text(t) {}
};

// Prints a message. The format knows %c, %d, %s and %f only; %f is always seven columns wide with
// two decimals, whatever stands in the format. "%" before any other character prints that
// character.
void say(Screen &screen, const char *format, std::initializer_list<MessageArgument> arguments = {});

// Prints `text` on standard output, in true order with the messages before and after it.
void sayOnStandardOutput(Screen &screen, const char *text, std::size_t length);

// Shows `line` on the terminal in place of the passing line shown before it. The next message wipes
// it away.
void showPassingLine(Screen &screen, const char *line);

// Writes out what has been gathered.
void flushScreen(Screen &screen);

// Prints the text of error `code` (any number) and, from code 10 on, the line number, the line and
// the caret. 999 prints nothing, 1000 only the line and the caret.
void reportError(RunState &run, const SourceReader &source, int code);

// Prints the text of warning `code` (any number) unless -s is given; from code 10 on with line
// number, line and caret.
void warn(RunState &run, const SourceReader &source, int code);
