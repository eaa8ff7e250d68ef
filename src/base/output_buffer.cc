// Bytes come in piece by piece and leave in blocks.
#include "base/output_buffer.h"

#include <cstring>

namespace korvo {

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
