// Names come in, streams go out.
#include "driver/files.h"

#include <sys/stat.h>

namespace {

bool isDirectory(std::FILE *file) {
  struct stat status;
  return fstat(fileno(file), &status) == 0 && S_ISDIR(status.st_mode);
}

bool isSameFile(const char *name, std::FILE *file) {
  struct stat named;
  struct stat open;
  return stat(name, &named) == 0 && fstat(fileno(file), &open) == 0 &&
         named.st_dev == open.st_dev && named.st_ino == open.st_ino;
}

}  // namespace

std::FILE *openForReading(const char *name) {
  std::FILE *file = std::fopen(name, "r");
  if (file != nullptr && isDirectory(file)) {
    std::fclose(file);
    return nullptr;
  }
  return file;
}

std::FILE *openForWriting(const char *name, const char *mode, std::FILE *input) {
  return isSameFile(name, input) ? nullptr : std::fopen(name, mode);
}

std::FILE *openTemporary() { return std::tmpfile(); }
