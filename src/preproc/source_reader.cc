// Physical lines come in from the host, and messages about the line go out.
#include "preproc/source_reader.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "base/characters.h"
#include "korvo/korvo.h"
#include "preproc/macro_call.h"

namespace korvo {

namespace {

// Makes sure that there is a character to take; false at the end of the text and on an error.
bool refill(LineInput &input) {
  if (input.next < input.end) {
    return true;
  }
  std::ptrdiff_t count = input.text.read(input.text.context, input.bytes, sizeof input.bytes);
  input.ended = count == 0;
  input.failed = count < 0;
  input.next = 0;
  input.end = count > 0 ? static_cast<std::size_t>(count) : 0;
  return count > 0;
}

// Takes characters up to and with the line feed, or as many as the line has room for; how many.
std::size_t takeLine(LineInput &input, char *line) {
  std::size_t length = 0;
  bool lineEnd = false;
  while (!lineEnd && length < static_cast<std::size_t>(kMaxLineLength) && refill(input)) {
    const char *from = input.bytes + input.next;
    std::size_t most = std::min(input.end - input.next, kMaxLineLength - length);
    const void *found = std::memchr(from, '\n', most);
    lineEnd = found != nullptr;
    std::size_t part =
        lineEnd ? static_cast<std::size_t>(static_cast<const char *>(found) - from) + 1 : most;
    std::memcpy(line + length, from, part);
    length += part;
    input.next += part;
  }
  return length;
}

// A line feed, a carriage return and the byte 255 become blanks, so no line contains a line end of
// its own. What stands behind a NUL is not seen. Returns whether the line has a mark: "$" and "~"
// are replaced, "#" defines, ">" keeps from defining, ";" and "/" begin comments.
bool clean(char *line) {
  constexpr CharacterSet kStops("\n\r\xff$~#>;/\0");
  bool hasMarks = false;
  for (char *c = findIn(kStops, line); *c != '\0'; c = findIn(kStops, c + 1)) {
    if (*c == '\n' || *c == '\r' || *c == '\xff') {
      *c = ' ';
    } else {
      hasMarks = true;
    }
  }
  return hasMarks;
}

// The line as it stands in the buffer and, below it, blanks (tabs under tabs) up to a caret under
// the position. A line feed inside the line, brought in by a macro of several lines, shows as "L".
// A position behind the line has no caret.
void composeLineAndCaret(Messages &messages, const SourceReader &source) {
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
  composeBytes(messages, {shown, length});
}

// What belongs to a message is the word that ends at the position, or else the character there.
bool isWordPart(char c) { return isNamePart(c) || std::strchr("+-.~@$#", c) != nullptr; }

void findPlace(SourceReader &source, Message &message) {
  // A line can be made to be costly, and a piece to say much about it.
  constexpr std::int64_t kMostSteps = 1 << 28;
  source.placeSteps += 8 * static_cast<std::int64_t>(source.replacements.count) + 1;
  if (source.placeSteps > kMostSteps) {
    return;
  }
  // A dropped section that is left open may have taken the position beyond the line.
  auto length = static_cast<std::int32_t>(std::strlen(source.line));
  std::int32_t from = std::min(source.position, length);
  std::int32_t to = from;
  while (from > 0 && isWordPart(source.line[from - 1])) {
    --from;
  }
  bool behind = source.line[to] == '\0' || isSpace(source.line[to]);
  if (from == to && behind && from > 0) {
    --from;
  } else if (from == to) {
    ++to;
  }
  Origin origin = originOf(source.map, source.origin, source.replacements, from, to);
  message.place = origin.place;
  message.body = origin.body;
}

Message messageAt(SourceReader &source, Severity severity, int number, std::string_view text) {
  Message message;
  if (source.wantsPlaces) {
    findPlace(source, message);
  }
  message.severity = severity;
  message.number = number;
  message.text = text;
  return message;
}

}  // namespace

ErrorCode fetchLine(SourceReader &source) {
  // An `#if` takes no notice of an expansion that was one too many.
  if (source.messages->printed > kMaxMessagesInRun || !mayExpand(source.spent)) {
    return kOutOfMemory;
  }
  std::size_t length = takeLine(source.input, source.line);
  if (length == 0) {
    return source.input.failed ? kTemporaryFileLost : kEndOfInput;
  }
  source.line[length] = '\0';
  if (source.input.failed) {
    return kTemporaryFileLost;
  }
  if (source.followsLines) {
    nextLine(source.origin, source.map, static_cast<std::int64_t>(length),
             source.line[length - 1] == '\n');
  }
  clearReplacements(source.replacements);
  source.hasMarks = clean(source.line);
  ++source.lineCounter;
  if (source.markedLength > 0) {
    std::fill_n(source.marked, source.markedLength, false);
    source.markedLength = 0;
  }
  source.expansions = 0;
  source.position = 0;
  return kOk;
}

void reportError(SourceReader &source, int code) {
  if (code == kAlreadyReported) {
    return;
  }
  Messages &messages = *source.messages;
  if (code == kContextOnly) {
    composeLineAndCaret(messages, source);
    tell(messages, messageAt(source, Severity::kNote, 0, ""));
    return;
  }
  if (code < 10) {
    compose(messages, "\nERROR: %s\n\n", {errorText(code)});
  } else {
    compose(messages, "\n\nERROR: Line %d: %s\n", {source.lineCounter, errorText(code)});
    composeLineAndCaret(messages, source);
  }
  tell(messages, messageAt(source, Severity::kError, code, errorText(code)));
}

void warn(SourceReader &source, int code) {
  Messages &messages = *source.messages;
  if (messages.silent) {
    return;
  }
  if (code < 10) {
    compose(messages, "\nWARNING: %s", {warningText(code)});
  } else {
    compose(messages, "\n\nWARNING: Line %d: %s\n", {source.lineCounter, warningText(code)});
    composeLineAndCaret(messages, source);
  }
  tell(messages, messageAt(source, Severity::kWarning, code, warningText(code)));
}

void sayError(SourceReader &source, const char *format,
              std::initializer_list<MessageArgument> arguments) {
  compose(*source.messages, format, arguments);
  std::string_view text(source.messages->text, source.messages->used);
  tell(*source.messages, messageAt(source, Severity::kError, 0, withoutLead(text)));
}

}  // namespace korvo
