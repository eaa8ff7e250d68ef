#include "harness.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string_view>

#include "driver/run.h"

namespace {

constexpr std::size_t kLargeAllocation = 256 * 1024;  // a chunk of events is larger
constexpr int kMostLargeAllocations = 2;
constexpr int kMostDigits = 5;
constexpr int kMostZeroDecimals = 2;

int largeAllocations = 0;

bool refuse(std::size_t size) {
  return size >= kLargeAllocation && ++largeAllocations > kMostLargeAllocations;
}

bool isDigit(std::uint8_t c) { return c >= '0' && c <= '9'; }

}  // namespace

// The linker sends the program's allocations here (--wrap).
extern "C" {
void *__real_malloc(std::size_t size);
void *__real_realloc(void *memory, std::size_t size);
void *__wrap_malloc(std::size_t size) { return refuse(size) ? nullptr : __real_malloc(size); }
void *__wrap_realloc(void *memory, std::size_t size) {
  return refuse(size) ? nullptr : __real_realloc(memory, size);
}
}

namespace fuzz {

void silence() {
  static bool done = false;
  if (done) {
    return;
  }
  done = true;
  std::FILE *nowhere = std::fopen("/dev/null", "w");
  char folder[] = "/tmp/korvo-fuzz-XXXXXX";
  if (nowhere == nullptr || mkdtemp(folder) == nullptr || chdir(folder) != 0 ||
      rmdir(folder) != 0) {
    fail("cannot prepare the run");
  }
  stderr = nowhere;
  stdout = nowhere;
}

bool isReasonable(const std::uint8_t *data, std::size_t size) {
  if (size > kMostBytes) {
    return false;
  }
  std::string_view text(reinterpret_cast<const char *>(data), size);
  if (text.find("|/") != std::string_view::npos || text.find("..") != std::string_view::npos) {
    return false;
  }
  int digits = 0;
  int zeroDecimals = -1;  // behind a point, so far only zeros
  for (std::uint8_t c : text) {
    digits = isDigit(c) ? digits + 1 : 0;
    zeroDecimals = c == '.' ? 0 : c == '0' && zeroDecimals >= 0 ? zeroDecimals + 1 : -1;
    if (zeroDecimals > kMostZeroDecimals) {
      return false;
    }
    if (digits > kMostDigits && (text.find('-') != std::string_view::npos)) {
      return false;
    }
  }
  return true;
}

void beginRun() {
  std::srand(1);
  largeAllocations = 0;
}

std::FILE *memoryFile(const std::uint8_t *data, std::size_t size, char *path) {
  int descriptor = memfd_create("piece", MFD_CLOEXEC);
  if (descriptor < 0) {
    return nullptr;
  }
  std::snprintf(path, 64, "/proc/self/fd/%d", descriptor);
  bool complete = write(descriptor, data, size) == static_cast<ssize_t>(size) &&
                  lseek(descriptor, 0, SEEK_SET) == 0;
  std::FILE *file = complete ? fdopen(descriptor, "r") : nullptr;
  if (file == nullptr) {
    close(descriptor);
  }
  return file;
}

void runProgram(const std::uint8_t *data, std::size_t size, const char *const *arguments) {
  silence();
  char path[64];
  std::FILE *file = memoryFile(data, size, path);
  if (file == nullptr) {
    return;
  }
  const char *argv[16] = {"korvo"};
  int argc = 1;
  for (; *arguments != nullptr; ++arguments) {
    argv[argc++] = *arguments;
  }
  argv[argc++] = path;
  argv[argc++] = "/dev/null";
  argv[argc] = nullptr;
  beginRun();
  int status = runKorvo(argc, argv);
  std::fclose(file);
  if (status != 0 && status != 1) {
    fail("an exit status that is neither 0 nor 1");
  }
}

void fail(const char *what) {
  constexpr char kLead[] = "fuzzer: ";
  if (write(2, kLead, sizeof kLead - 1) < 0 || write(2, what, std::strlen(what)) < 0 ||
      write(2, "\n", 1) < 0) {
    std::abort();
  }
  std::abort();
}

}  // namespace fuzz
