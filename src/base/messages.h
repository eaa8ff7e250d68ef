// The one way to whoever listens. Every message goes through here: composed from a format that
// knows four conversions, counted, and told with what a listener wants to know of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "korvo/korvo.h"

namespace korvo {

// A run says no more than this many bytes, give or take what it says about one line: a short text
// can ask for a warning, with its line of 4,000 characters, in every few of its characters.
inline constexpr std::int64_t kMaxMessagesInRun = 3221225472;

// Room for the longest message: a few texts of a line's length, or the line and its caret.
inline constexpr std::size_t kMessageBytes = 4 * 4096;

struct Messages {
  Listener listener;
  bool silent = false;        // no warnings, no optional notes
  bool tempoVerbose = false;  // notes on conversions from beats to seconds
  std::int64_t printed = 0;   // bytes of all messages of the run so far
  std::size_t used = 0;       // of the message that is being composed
  char text[kMessageBytes];
};

// One argument of a message: a character, an integer, a real number or a text.
struct MessageArgument {
  enum Kind { kCharacter, kInteger, kReal, kText } kind;
  std::int64_t integer = 0;
  double real = 0.0;
  std::string_view text;

  MessageArgument(char c) : kind(kCharacter), integer(c) {}
  MessageArgument(int i) : kind(kInteger), integer(i) {}
  MessageArgument(std::int64_t i) : kind(kInteger), integer(i) {}
  MessageArgument(double r) : kind(kReal), real(r) {}
  MessageArgument(float r) : kind(kReal), real(static_cast<double>(r)) {}
  MessageArgument(const char *t) : kind(kText), text(t) {}
  MessageArgument(std::string_view t) : kind(kText), text(t) {}
};

// Appends to the message that is being composed. The format knows %c, %d, %s and %f only; %f is
// always seven columns wide with two decimals, whatever stands in the format. "%" before any other
// character gives that character. What has no room is left out.
void compose(Messages &messages, const char *format,
             std::initializer_list<MessageArgument> arguments = {});

// The same for bytes as they are.
void composeBytes(Messages &messages, std::string_view bytes);

// Tells the composed message; `message` holds all but what is printed. Without a text of its own
// the text is what is printed, less the line ends and blanks around it.
void tell(Messages &messages, Message message);

// The text of an error without "ERROR:", line number and line ends around it.
std::string_view withoutLead(std::string_view text);

// A note: composed and told.
void say(Messages &messages, const char *format,
         std::initializer_list<MessageArgument> arguments = {});

// A note that the program shows on standard output.
void sayOnStandardOutput(Messages &messages, std::string_view text);

}  // namespace korvo
