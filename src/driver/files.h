// Opening files without hurting any.
#pragma once

#include <cstdio>

// Opens `name` for reading; null when it cannot be opened or is a directory.
std::FILE *openForReading(const char *name);

// Opens `name` for writing (mode "w" or "wb"); null when it cannot be opened, or when it is the
// very file that `input` reads (by whatever name or link): writing would destroy the composer's
// text.
std::FILE *openForWriting(const char *name, const char *mode, std::FILE *input);

// A temporary file for writing and reading that has no name: nobody else can open it, and it is
// gone when the program is, however that ends. Null when it cannot be made.
std::FILE *openTemporary();
