// Text and bytes on their way into a file: one large buffer in front of the stream. What stood in
// the file before is cut away when the first byte goes into it. A write that fails is remembered
// and asked for once, when the file is closed.
#pragma once

#include <cstddef>
#include <cstdio>

struct OutputBuffer {
  std::FILE *file = nullptr;
  std::size_t used = 0;
  bool begun = false;   // the first byte is in the file; before, an older text stands there
  bool failed = false;  // something could not be written
  char bytes[1 << 17];
};

// Room for `length` bytes (at most 4096); the caller fills it and calls `taken` with the end of
// what it wrote.
char *room(OutputBuffer &buffer, std::size_t length);
void taken(OutputBuffer &buffer, const char *end);

// Appends `length` bytes (at most kLineBytes of a line; no more than the buffer holds).
void append(OutputBuffer &buffer, const char *bytes, std::size_t length);

// Writes out what is gathered.
void flushOutput(OutputBuffer &buffer);

// Writes out what is gathered and closes the file, if it is open. A file that nothing has been
// written to keeps its older text, unless the run has `endedWell` and nothing is what it made. True
// when every byte has reached the file.
bool closeOutput(OutputBuffer &buffer, bool endedWell);
