// Bytes come in piece by piece and leave in blocks.
#include "base/output_buffer.h"

#include <cstring>

namespace korvo {

char *room(OutputBuffer &buffer, std::size_t length) {
  if (sizeof buffer.bytes - buffer.used < length) {
    flushOutput(buffer);
  }
  return buffer.bytes + buffer.used;
}

void taken(OutputBuffer &buffer, const char *end) {
  buffer.used = static_cast<std::size_t>(end - buffer.bytes);
}

void append(OutputBuffer &buffer, const char *bytes, std::size_t length) {
  char *place = room(buffer, length);
  std::memcpy(place, bytes, length);
  taken(buffer, place + length);
}

void flushOutput(OutputBuffer &buffer) {
  if (buffer.used > 0 && buffer.listener.output != nullptr) {
    buffer.listener.output(buffer.listener.context, buffer.bytes, buffer.used);
  }
  buffer.used = 0;
}

}  // namespace korvo
