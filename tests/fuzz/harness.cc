#include "harness.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "base/characters.h"
#include "program/run.h"

namespace {

using korvo::isDigit;
using korvo::isSpace;

constexpr std::size_t kLargeAllocation = 256 * 1024;  // a chunk of events is larger
constexpr int kMostLargeAllocations = 2;
constexpr std::size_t kMostAtOnce = 997;  // bytes that a text in memory gives
constexpr int kMostDigits = 5;
constexpr int kMostZeroDecimals = 2;

int largeAllocations = 0;

bool refuse(std::size_t size) {
  return size >= kLargeAllocation && ++largeAllocations > kMostLargeAllocations;
}

struct IncludeFile {
  const char *name;
  const char *text;
  int blanks = 0;  // before the text
};

// The files that an include finds. What they leave open or begin, the including text may close or
// go on with: a comment, a definition, a section, a line.
constexpr IncludeFile kIncludeFiles[] = {
    {"a", "1 2 / 3 "},
    {"b.txt", "te(90)\nrs(1)\n#const k 2.5\n> literal\n"},
    {"c", "4 #include |a| x2\n#include |e|"},
    {"d", "#define m(x) #$x 1 $x#\n#define n #2#\n"},
    {"e", ""},
    {"f", "1 /* open\n"},
    {"g", "; over and over\n#include |g|"},
    {"h", "1 #include |a"},
    {"i", "i1 = 4 0 -3 {\np2 1\np3 1\np4 1\n}\n"},
    {"j", "1\n#include |nowhere|\n"},
    {"k", "#define w #1 2"},
    {"l", "#if(1)\n"},
    {"m", "4 5", 4000},
    {"part.txt", "> part\n"},  // as many of the other tests' pieces name it
};

char folder[] = "/tmp/korvo-fuzz-XXXXXX";

void removeFolder() {
  for (const IncludeFile &file : kIncludeFiles) {
    unlink(file.name);
  }
  rmdir(folder);
}

bool writeIncludeFile(const IncludeFile &file) {
  std::FILE *out = std::fopen(file.name, "w");
  if (out == nullptr) {
    return false;
  }
  std::fprintf(out, "%*s%s", file.blanks, "", file.text);
  return std::fclose(out) == 0;
}

// A folder of its own with the include files, as long as the fuzzer runs. A finding ends the
// process at once and leaves the folder behind.
bool moveToFolder() {
  if (mkdtemp(folder) == nullptr || chdir(folder) != 0 || std::atexit(removeFolder) != 0) {
    return false;
  }
  for (const IncludeFile &file : kIncludeFiles) {
    if (!writeIncludeFile(file)) {
      return false;
    }
  }
  return true;
}

// Whether an include name may be opened: it stays in the folder or is the empty device.
bool isHarmless(const std::string &name) {
  if (name == "/dev/null") {
    return true;
  }
  std::string framed = "/" + name + "/";
  return name.front() != '/' && framed.find("/../") == std::string::npos;
}

// The name that follows an `#include`, as the program reads it; empty when there is none.
std::string includeName(std::string_view text) {
  std::size_t position = 0;
  while (position < text.size() && isSpace(text[position])) {
    ++position;
  }
  std::string name;
  if (position == text.size() || text[position] != '|') {
    return name;
  }
  for (++position; position < text.size() && text[position] != '|'; ++position) {
    if (text[position] != '\n') {
      name.push_back(text[position]);
    }
  }
  return name;
}

bool hasOnlyHarmlessIncludes(std::string_view text) {
  constexpr std::string_view kInclude = "#include";
  for (std::size_t at = text.find(kInclude); at != std::string_view::npos;
       at = text.find(kInclude, at + 1)) {
    std::string name = includeName(text.substr(at + kInclude.size()));
    if (!name.empty() && !isHarmless(name)) {
      return false;
    }
  }
  return true;
}

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
  if (nowhere == nullptr || !moveToFolder()) {
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
  if (!hasOnlyHarmlessIncludes(text)) {
    return false;
  }
  int digits = 0;
  int zeroDecimals = -1;  // behind a point, so far only zeros
  for (char c : text) {
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

void beginRun() { largeAllocations = 0; }

// The bytes as a file open for reading; null when there is no memory for it. `path` has room for
// 64 characters and gets a name under which the file can be opened again while it is open.
static std::FILE *memoryFile(const std::uint8_t *data, std::size_t size, char *path) {
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
  int status = ::runProgram(argc, argv);
  std::fclose(file);
  if (status != 0 && status != 1) {
    fail("an exit status that is neither 0 nor 1");
  }
}

std::optional<std::string> includeText(std::string_view name) {
  for (const IncludeFile &file : kIncludeFiles) {
    if (name == file.name) {
      return std::string(static_cast<std::size_t>(file.blanks), ' ') + file.text;
    }
  }
  return std::nullopt;
}

korvo::TextInput inputOf(MemoryText &text) {
  return {&text, [](void *context, char *bytes, std::size_t size) {
            auto &self = *static_cast<MemoryText *>(context);
            std::size_t count = std::min({size, kMostAtOnce, self.text.size() - self.taken});
            std::memcpy(bytes, self.text.data() + self.taken, count);
            self.taken += count;
            return static_cast<std::ptrdiff_t>(count);
          }};
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
