// Whole runs that write a MIDI file, without warnings.
#include "harness.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  constexpr const char *kOptions[] = {"-m", "-s", nullptr};
  if (!fuzz::isReasonable(data, size)) {
    return -1;
  }
  fuzz::runProgram(data, size, kOptions);
  return 0;
}
