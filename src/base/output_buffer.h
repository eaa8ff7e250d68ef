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

// Room for `length` bytes (at most 4096); the caller fills it and calls `taken` with the end of
// what it wrote.
char *room(OutputBuffer &buffer, std::size_t length);
void taken(OutputBuffer &buffer, const char *end);

// Appends `length` bytes, no more than the buffer holds.
void append(OutputBuffer &buffer, const char *bytes, std::size_t length);

// Hands over what is gathered.
void flushOutput(OutputBuffer &buffer);

}  // namespace korvo
