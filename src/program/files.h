// Opening files without hurting any.
#pragma once

#include <cstdint>
#include <cstdio>
#include <initializer_list>

// Gives every standard stream that the caller has closed an empty file, so that no file opened
// later takes its place and receives the messages.
void holdStandardStreams();

// Opens `name` for reading; null when it cannot be opened or is a directory.
std::FILE *openForReading(const char *name);

// Opens an included file, which is null for anything but a plain file: text from a stranger must
// not make the program wait for a pipe or read a device without end. `size` is its size in bytes;
// whoever reads no further is safe from files that grow as they are read.
std::FILE *openIncluded(const char *name, std::int64_t &size);

// Opens `name` for writing; null when it cannot be opened. What stands in the file stays there
// until `emptyFile`.
std::FILE *openForWriting(const char *name);

// Cuts a file opened for writing down to nothing; false when the system refuses. What is not a
// plain file has nothing to cut, and null is no file.
bool emptyFile(std::FILE *file);

// From here on nothing that is written to the file reaches it, not even what is still gathered.
void abandonFile(std::FILE *file);

// Whether the file called `name` is the one that `file` has opened, by whatever name or link.
bool isSameFile(const char *name, std::FILE *file);

// Whether the file is a plain one that one of the others has opened, too. Two streams may share a
// terminal or the null device; any of them may be null.
bool isOpenIn(std::FILE *file, std::initializer_list<std::FILE *> others);

// A temporary file for writing and reading that has no name: nobody else can open it, and it is
// gone when the program is, however that ends. Null when it cannot be made.
std::FILE *openTemporary();
