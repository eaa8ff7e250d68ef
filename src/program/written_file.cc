// Bytes come in piece by piece and leave in blocks.
#include "program/written_file.h"

#include <cstring>

#include "program/files.h"

namespace {

constexpr std::size_t kLargePiece = 1 << 16;  // one that goes straight into the file

// Cuts the older text away. A file that cannot be cut is one that cannot be written.
void begin(WrittenFile &file) {
  if (!file.begun) {
    file.begun = true;
    file.failed = !emptyFile(file.file);
  }
}

void put(WrittenFile &file, const char *bytes, std::size_t length) {
  if (length == 0) {
    return;
  }
  begin(file);
  if (!file.failed && std::fwrite(bytes, 1, length, file.file) != length) {
    file.failed = true;
  }
}

}  // namespace

void writeBytes(WrittenFile &file, const char *bytes, std::size_t length) {
  if (sizeof file.bytes - file.used < length) {
    put(file, file.bytes, file.used);
    file.used = 0;
  }
  if (length >= kLargePiece && file.used == 0) {
    put(file, bytes, length);
    return;
  }
  std::memcpy(file.bytes + file.used, bytes, length);
  file.used += length;
}

bool closeWritten(WrittenFile &file, bool endedWell) {
  if (file.file == nullptr) {
    return true;
  }
  put(file, file.bytes, file.used);
  file.used = 0;
  if (endedWell) {
    begin(file);
  }
  bool closed = std::fclose(file.file) == 0;
  file.file = nullptr;
  return closed && !file.failed;
}
