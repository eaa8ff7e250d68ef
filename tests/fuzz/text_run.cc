// Whole runs that write a score, with all the messages, a log and an expansion file.
#include "harness.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  constexpr const char *kOptions[] = {"-t", "-l/dev/./null", "-x/dev/.//null", nullptr};
  if (!fuzz::isReasonable(data, size)) {
    return -1;
  }
  fuzz::runProgram(data, size, kOptions);
  return 0;
}
