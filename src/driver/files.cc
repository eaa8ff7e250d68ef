// Names come in, streams go out.
#include "driver/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

void holdStandardStreams() {
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (fcntl(stream, F_GETFD) == -1) {
      open("/dev/null", O_RDWR);  // takes the lowest number that is free: this one
    }
  }
}

std::FILE *openForReading(const char *name) {
  std::FILE *file = std::fopen(name, "r");
  if (file != nullptr && isDirectory(file)) {
    std::fclose(file);
    return nullptr;
  }
  return file;
}

std::FILE *openIncluded(const char *name) {
  struct stat status;
  bool isPlain = stat(name, &status) == 0 && S_ISREG(status.st_mode);
  return isPlain ? openForReading(name) : nullptr;
}

std::FILE *openForWriting(const char *name, const char *mode, std::FILE *input) {
  return isSameFile(name, input) ? nullptr : std::fopen(name, mode);
}

std::FILE *openTemporary() { return std::tmpfile(); }
