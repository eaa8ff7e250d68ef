// Names come in, streams go out.
#include "program/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t kReadAndWriteForAll = 0666;  // less what the user's mask takes away

bool isSame(const struct stat &a, const struct stat &b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// A stream on an open file, which is closed when there can be none.
std::FILE *streamOn(int descriptor, const char *mode) {
  std::FILE *file = fdopen(descriptor, mode);
  if (file == nullptr) {
    close(descriptor);
  }
  return file;
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
  struct stat status;
  if (file != nullptr && fstat(fileno(file), &status) == 0 && S_ISDIR(status.st_mode)) {
    std::fclose(file);
    return nullptr;
  }
  return file;
}

std::FILE *openIncluded(const char *name, std::int64_t &size) {
  int descriptor = open(name, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (descriptor == -1) {
    return nullptr;
  }
  struct stat status;
  if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
    close(descriptor);
    return nullptr;
  }
  size = status.st_size;
  return streamOn(descriptor, "r");
}

std::FILE *openForWriting(const char *name) {
  int descriptor = open(name, O_WRONLY | O_CREAT | O_CLOEXEC, kReadAndWriteForAll);
  return descriptor == -1 ? nullptr : streamOn(descriptor, "w");
}

bool emptyFile(std::FILE *file) {
  struct stat status;
  bool hasText = file != nullptr && fstat(fileno(file), &status) == 0 && S_ISREG(status.st_mode) &&
                 status.st_size > 0;
  return !hasText || ftruncate(fileno(file), 0) == 0;
}

void abandonFile(std::FILE *file) {
  int nothing = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (nothing != -1) {
    dup2(nothing, fileno(file));
    close(nothing);
  }
}

bool isSameFile(const char *name, std::FILE *file) {
  struct stat named;
  struct stat opened;
  return stat(name, &named) == 0 && fstat(fileno(file), &opened) == 0 && isSame(named, opened);
}

bool isOpenIn(std::FILE *file, std::initializer_list<std::FILE *> others) {
  struct stat status;
  if (file == nullptr || fstat(fileno(file), &status) != 0 || !S_ISREG(status.st_mode)) {
    return false;
  }
  for (std::FILE *other : others) {
    struct stat opened;
    if (other != nullptr && fstat(fileno(other), &opened) == 0 && isSame(status, opened)) {
      return true;
    }
  }
  return false;
}

std::FILE *openTemporary() { return std::tmpfile(); }
