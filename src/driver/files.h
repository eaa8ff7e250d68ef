// Opening files without hurting any.
#pragma once

#include <cstdio>

// Gives every standard stream that the caller has closed an empty file, so that no file opened
// later takes its place and receives the messages.
void holdStandardStreams();

// Opens `name` for reading; null when it cannot be opened or is a directory.
std::FILE *openForReading(const char *name);

// Opens an included file. Besides the above it is null for anything but a plain file: text from a
// stranger must not make the program wait for a pipe or read a device without end.
std::FILE *openIncluded(const char *name);

// Opens `name` for writing (mode "w" or "wb"); null when it cannot be opened, or when it is the
// very file that `input` reads (by whatever name or link): writing would destroy the composer's
// text.
std::FILE *openForWriting(const char *name, const char *mode, std::FILE *input);

// A temporary file for writing and reading that has no name: nobody else can open it, and it is
// gone when the program is, however that ends. Null when it cannot be made.
std::FILE *openTemporary();
