// Messages come in as a format and its arguments and go out, character by character, to standard
// error and the log. The format language is tiny on purpose: there is nothing in it that text from
// a piece could set off.
#include "driver/messages.h"

#include <cstring>

#include "driver/catalogue.h"
#include "driver/run_state.h"
#include "output/number_format.h"

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
  screen.printed += static_cast<std::int64_t>(length);
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
}

void put(Screen &screen, const char *bytes, std::size_t length) {
  gather(screen, stderr, bytes, length);
  if (screen.log.file != nullptr) {
    append(screen.log, bytes, length);
  }
}

void putArgument(Screen &screen, const MessageArgument &argument) {
  char digits[kLongestNumber];
  switch (argument.kind) {
    case MessageArgument::kCharacter:
      digits[0] = static_cast<char>(argument.integer);
      put(screen, digits, 1);
      break;
    case MessageArgument::kInteger:
      put(screen, digits,
          static_cast<std::size_t>(writeInteger(digits, argument.integer, 0) - digits));
      break;
    case MessageArgument::kReal:
      put(screen, digits,
          static_cast<std::size_t>(writeFixed(digits, argument.real, 7, 2) - digits));
      break;
    case MessageArgument::kText:
      put(screen, argument.text, std::strlen(argument.text));
      break;
  }
}

// The line as it stands in the buffer and, below it, blanks (tabs under tabs) up to a caret under
// the position. A line feed inside the line, brought in by a macro of several lines, shows as "L".
// A position behind the line has no caret.
void putLineAndCaret(Screen &screen, const SourceReader &source) {
  char shown[2 * kLineBytes];
  std::size_t length = 0;
  for (const char *c = source.line; *c != '\0'; ++c) {
    shown[length++] = *c == '\n' ? 'L' : *c;
  }
  std::int32_t end = static_cast<std::int32_t>(length);
  shown[length++] = '\n';
  if (end > 0) {
    for (std::int32_t i = 0; i < end && i <= source.position; ++i) {
      shown[length++] = i == source.position ? '^' : source.line[i] == '\t' ? '\t' : ' ';
    }
  }
  shown[length++] = '\n';
  put(screen, shown, length);
}

void endMessage(Screen &screen) {
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

void showPassingLine(Screen &screen, const char *line) {
  wipePassingLine(screen);
  std::fputs(kRememberCursor, stderr);
  std::fputs(line, stderr);
  screen.lineShown = true;
}

void say(Screen &screen, const char *format, std::initializer_list<MessageArgument> arguments) {
  const MessageArgument *next = arguments.begin();
  while (*format != '\0') {
    std::size_t plain = std::strcspn(format, "%");
    put(screen, format, plain);
    format += plain;
    if (*format == '\0') {
      break;
    }
    char conversion = *++format;
    if (conversion == '\0') {
      break;
    }
    bool takesArgument = std::strchr("cdfs", conversion) != nullptr && next != arguments.end();
    if (takesArgument) {
      putArgument(screen, *next++);
    } else {
      put(screen, &conversion, 1);
    }
    ++format;
  }
  endMessage(screen);
}

void sayOnStandardOutput(Screen &screen, const char *text, std::size_t length) {
  gather(screen, stdout, text, length);
  endMessage(screen);
}

void reportError(RunState &run, const SourceReader &source, int code) {
  if (code == kAlreadyReported) {
    return;
  }
  if (code != kContextOnly) {
    if (code < 10) {
      say(run.screen, "\nERROR: %s\n\n", {errorText(code)});
      return;
    }
    say(run.screen, "\n\nERROR: Line %d: %s\n", {source.lineCounter, errorText(code)});
  }
  putLineAndCaret(run.screen, source);
  endMessage(run.screen);
}

void warn(RunState &run, const SourceReader &source, int code) {
  if (run.options.silent) {
    return;
  }
  if (code < 10) {
    say(run.screen, "\nWARNING: %s", {warningText(code)});
    return;
  }
  say(run.screen, "\n\nWARNING: Line %d: %s\n", {source.lineCounter, warningText(code)});
  putLineAndCaret(run.screen, source);
  endMessage(run.screen);
}
