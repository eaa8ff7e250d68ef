// A format and its arguments come in, a message goes to the listener. The format language is tiny
// on purpose: there is nothing in it that text from a piece could set off.
#include "base/messages.h"

#include <algorithm>
#include <cstring>

#include "base/number_format.h"

namespace korvo {

namespace {

std::string_view written(const char *begin, const char *end) {
  return {begin, static_cast<std::size_t>(end - begin)};
}

void composeArgument(Messages &messages, const MessageArgument &argument) {
  char digits[kLongestNumber];
  switch (argument.kind) {
    case MessageArgument::kCharacter:
      digits[0] = static_cast<char>(argument.integer);
      composeBytes(messages, {digits, 1});
      break;
    case MessageArgument::kInteger:
      composeBytes(messages, written(digits, writeInteger(digits, argument.integer, 0)));
      break;
    case MessageArgument::kReal:
      composeBytes(messages, written(digits, writeFixed(digits, argument.real, 7, 2)));
      break;
    case MessageArgument::kText:
      composeBytes(messages, argument.text);
      break;
  }
}

bool isAround(char c) { return c == ' ' || c == '\t' || c == '\n'; }

// The text without line ends and blanks around it.
std::string_view trimmed(std::string_view text) {
  const char *begin = text.data();
  const char *end = begin + text.size();
  while (begin != end && isAround(*begin)) {
    ++begin;
  }
  while (begin != end && isAround(end[-1])) {
    --end;
  }
  return begin == end ? std::string_view() : written(begin, end);
}

}  // namespace

void composeBytes(Messages &messages, std::string_view bytes) {
  std::size_t length = std::min(bytes.size(), sizeof messages.text - messages.used);
  std::memcpy(messages.text + messages.used, bytes.data(), length);
  messages.used += length;
}

void compose(Messages &messages, const char *format,
             std::initializer_list<MessageArgument> arguments) {
  const MessageArgument *next = arguments.begin();
  while (*format != '\0') {
    std::size_t plain = std::strcspn(format, "%");
    composeBytes(messages, {format, plain});
    format += plain;
    if (*format == '\0' || format[1] == '\0') {
      return;
    }
    char conversion = format[1];
    format += 2;
    if (std::strchr("cdfs", conversion) != nullptr && next != arguments.end()) {
      composeArgument(messages, *next++);
    } else {
      composeBytes(messages, {&conversion, 1});
    }
  }
}

std::string_view withoutLead(std::string_view text) {
  constexpr std::string_view kError = "ERROR: ";
  constexpr std::string_view kLine = "Line ";
  text = trimmed(text);
  text.remove_prefix(text.starts_with(kError) ? kError.size() : 0);
  if (text.starts_with(kLine)) {
    text.remove_prefix(text.find(": ") + 2);
  }
  return text;
}

void tell(Messages &messages, Message message) {
  message.printed = {messages.text, messages.used};
  messages.printed += static_cast<std::int64_t>(messages.used);
  messages.used = 0;
  if (messages.listener.message == nullptr) {
    return;
  }
  if (message.text.data() == nullptr) {
    message.text = trimmed(message.printed);
  }
  messages.listener.message(messages.listener.context, message);
}

void say(Messages &messages, const char *format, std::initializer_list<MessageArgument> arguments) {
  compose(messages, format, arguments);
  tell(messages, {});
}

void sayOnStandardOutput(Messages &messages, std::string_view text) {
  composeBytes(messages, text);
  Message message;
  message.onStandardOutput = true;
  tell(messages, message);
}

}  // namespace korvo
