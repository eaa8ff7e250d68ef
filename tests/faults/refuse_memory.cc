// A library to be loaded before the C library (LD_PRELOAD). It refuses the allocation with the
// number in KORVO_REFUSE_AT (none when it is missing), with KORVO_REFUSE_FROM every one behind it
// too, and at the end writes into the file named by KORVO_REFUSE_REPORT how many allocations there
// were, how many were refused, and how many blocks were never freed. Only what happens in the
// program's main is counted.
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

extern "C" {
// The C library's own entries, which need no look-up.
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);
void __libc_free(void *memory);
}

namespace {

using Main = int (*)(int, char **, char **);
using Hook = void (*)();
using StartMain = int (*)(Main, int, char **, Hook, Hook, Hook, void *);

bool counting = false;
long counted = 0;
long refused = 0;
long live = 0;
long refuseAt = 0;
bool refuseAllBehind = false;
Main programMain = nullptr;

bool refuse() {
  if (!counting) {
    return false;
  }
  ++counted;
  if (refuseAt == 0 || counted < refuseAt || (counted > refuseAt && !refuseAllBehind)) {
    return false;
  }
  ++refused;
  errno = ENOMEM;
  return true;
}

void *got(void *memory) {
  live += counting && memory != nullptr ? 1 : 0;
  return memory;
}

void writeReport() {
  const char *name = std::getenv("KORVO_REFUSE_REPORT");
  if (name == nullptr) {
    return;
  }
  char text[128];
  int length = std::snprintf(text, sizeof text, "%ld %ld %ld\n", counted, refused, live);
  int file = open(name, O_WRONLY | O_CREAT | O_TRUNC, 0644);
  if (file < 0 || write(file, text, static_cast<std::size_t>(length)) != length) {
    _exit(97);
  }
  close(file);
}

int countedMain(int argc, char **argv, char **environment) {
  const char *at = std::getenv("KORVO_REFUSE_AT");
  refuseAt = at == nullptr ? 0 : std::strtol(at, nullptr, 10);
  refuseAllBehind = std::getenv("KORVO_REFUSE_FROM") != nullptr;
  counting = true;
  int status = programMain(argc, argv, environment);
  counting = false;
  writeReport();
  return status;
}

}  // namespace

extern "C" {

void *malloc(std::size_t size) { return refuse() ? nullptr : got(__libc_malloc(size)); }

void *calloc(std::size_t count, std::size_t size) {
  return refuse() ? nullptr : got(__libc_calloc(count, size));
}

void *realloc(void *memory, std::size_t size) {
  if (refuse()) {
    return nullptr;
  }
  return memory == nullptr ? got(__libc_realloc(nullptr, size)) : __libc_realloc(memory, size);
}

void free(void *memory) {
  live -= counting && memory != nullptr ? 1 : 0;
  __libc_free(memory);
}

// In place of the program's main comes the one that counts.
int __libc_start_main(Main program, int argc, char **argv, Hook init, Hook fini, Hook loaderFini,
                      void *stackEnd) {
  programMain = program;
  auto real = reinterpret_cast<StartMain>(dlsym(RTLD_NEXT, "__libc_start_main"));
  return real(countedMain, argc, argv, init, fini, loaderFini, stackEnd);
}
}
