// Catches what goes to a file descriptor (1 or 2, or both in their true order), for tests.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

class Capture {
  struct Saved {
    int descriptor;
    int copy;
  };
  std::FILE *caught = std::tmpfile();
  std::vector<Saved> saved;

  void restore() {
    std::fflush(nullptr);
    for (const Saved &s : saved) {
      dup2(s.copy, s.descriptor);
      close(s.copy);
    }
    saved.clear();
  }

 public:
  explicit Capture(std::initializer_list<int> descriptors) {
    std::fflush(nullptr);
    if (caught == nullptr) {
      std::abort();
    }
    for (int descriptor : descriptors) {
      saved.push_back({descriptor, dup(descriptor)});
      dup2(fileno(caught), descriptor);
    }
  }
  Capture(const Capture &) = delete;
  Capture &operator=(const Capture &) = delete;
  ~Capture() {
    restore();
    std::fclose(caught);
  }

  // Ends catching and gives what was caught.
  std::string text() {
    restore();
    std::string result;
    std::rewind(caught);
    for (int c = std::getc(caught); c != EOF; c = std::getc(caught)) {
      result += static_cast<char>(c);
    }
    return result;
  }
};
