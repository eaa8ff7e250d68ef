// Messages come in and go out in larger pieces.
#include "program/screen.h"

#include <cstring>

namespace {

// A message may have left the cursor in the middle of a line: the passing line is drawn behind it,
// and wiped by going back to where the cursor was and erasing from there.
constexpr const char *kRememberCursor = "\0337  ";
constexpr const char *kWipeLine = "\0338\033[J";

void wipePassingLine(Screen &screen) {
  if (screen.lineShown) {
    std::fputs(kWipeLine, stderr);
    screen.lineShown = false;
  }
}

void gather(Screen &screen, std::FILE *stream, const char *bytes, std::size_t length) {
  wipePassingLine(screen);
  if (screen.stream != stream) {
    flushScreen(screen);
    screen.stream = stream;
  }
  screen.shown += static_cast<std::int64_t>(length);
  while (length > 0) {
    if (screen.used == sizeof screen.bytes) {
      flushScreen(screen);
      screen.stream = stream;
    }
    std::size_t room = sizeof screen.bytes - screen.used;
    std::size_t part = length < room ? length : room;
    std::memcpy(screen.bytes + screen.used, bytes, part);
    screen.used += part;
    bytes += part;
    length -= part;
  }
  if (screen.isTerminal) {
    flushScreen(screen);
  }
}

}  // namespace

void flushScreen(Screen &screen) {
  if (screen.used > 0) {
    std::fwrite(screen.bytes, 1, screen.used, screen.stream);
    std::fflush(screen.stream);
    screen.used = 0;
  }
  screen.stream = nullptr;
}

void show(Screen &screen, const char *text, std::size_t length) {
  gather(screen, stderr, text, length);
  if (screen.log.file != nullptr) {
    writeBytes(screen.log, text, length);
  }
}

void showOnStandardOutput(Screen &screen, const char *text, std::size_t length) {
  gather(screen, stdout, text, length);
}

void showPassingLine(Screen &screen, const char *line) {
  wipePassingLine(screen);
  std::fputs(kRememberCursor, stderr);
  std::fputs(line, stderr);
  screen.lineShown = true;
}
