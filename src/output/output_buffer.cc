// Bytes come in piece by piece and leave in blocks.
#include "output/output_buffer.h"

#include <cstring>

#include "driver/files.h"

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

namespace {

// Cuts the older text away. A file that cannot be cut is one that cannot be written.
void beginFile(OutputBuffer &buffer) {
  if (!buffer.begun) {
    buffer.begun = true;
    buffer.failed = !emptyFile(buffer.file);
  }
}

}  // namespace

void flushOutput(OutputBuffer &buffer) {
  if (buffer.used == 0) {
    return;
  }
  beginFile(buffer);
  if (!buffer.failed && std::fwrite(buffer.bytes, 1, buffer.used, buffer.file) != buffer.used) {
    buffer.failed = true;
  }
  buffer.used = 0;
}

bool closeOutput(OutputBuffer &buffer, bool endedWell) {
  if (buffer.file == nullptr) {
    return true;
  }
  flushOutput(buffer);
  if (endedWell) {
    beginFile(buffer);
  }
  bool closed = std::fclose(buffer.file) == 0;
  buffer.file = nullptr;
  return closed && !buffer.failed;
}
