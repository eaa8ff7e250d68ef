// Score and MIDI file on their way to the listener: one large buffer, so that he is called once for
// many events.
#pragma once

#include <cstddef>

#include "korvo/korvo.h"

namespace korvo {

struct OutputBuffer {
  Listener listener;
  std::size_t used = 0;
  char bytes[1 << 17];
};

// Hands over what is gathered.
void flushOutput(OutputBuffer &buffer);

// Room for `length` bytes, no more than the buffer holds; the caller fills it and calls `taken` with
// the end of what it wrote.
inline char *room(OutputBuffer &buffer, std::size_t length) {
  if (sizeof buffer.bytes - buffer.used < length) {
    flushOutput(buffer);
  }
  return buffer.bytes + buffer.used;
}
inline void taken(OutputBuffer &buffer, const char *end) {
  buffer.used = static_cast<std::size_t>(end - buffer.bytes);
}

// Appends `length` bytes, no more than the buffer holds.
void append(OutputBuffer &buffer, const char *bytes, std::size_t length);

}  // namespace korvo
