// A file that the program writes: one large buffer in front of the stream. What stood in the file
// before is cut away when the first byte goes into it. A write that fails is remembered and asked
// for once, when the file is closed.
#pragma once

#include <cstddef>
#include <cstdio>

struct WrittenFile {
  std::FILE *file = nullptr;
  std::size_t used = 0;
  bool begun = false;   // the first byte is in the file; before, an older text stands there
  bool failed = false;  // something could not be written
  char bytes[1 << 17];
};

// Appends `length` bytes.
void writeBytes(WrittenFile &file, const char *bytes, std::size_t length);

// Writes out what is gathered and closes the file, if it is open. A file that nothing has been
// written to keeps its older text, unless the run has `endedWell` and nothing is what it made. True
// when every byte has reached the file.
bool closeWritten(WrittenFile &file, bool endedWell);
