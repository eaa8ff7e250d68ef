// A file to be written whose text can be asked for, for tests.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

class MemoryFile {
  char *bytes = nullptr;
  std::size_t length = 0;
  std::FILE *stream = open_memstream(&bytes, &length);
  bool closedByOwner = false;

 public:
  MemoryFile() = default;
  MemoryFile(const MemoryFile &) = delete;
  MemoryFile &operator=(const MemoryFile &) = delete;
  ~MemoryFile() {
    if (!closedByOwner) {
      std::fclose(stream);
    }
    std::free(bytes);
  }

  std::FILE *file() { return stream; }

  // What has been written so far.
  std::string text() {
    if (!closedByOwner) {
      std::fflush(stream);
    }
    return {bytes, length};
  }

  // To be called when the tested code has closed the file.
  void wasClosed() { closedByOwner = true; }
};
