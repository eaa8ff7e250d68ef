// What the fuzzers share: an input becomes a text or a file in memory, and what the program writes
// to its streams is dropped. Sanitizers and libFuzzer write past the streams, so their reports are
// seen.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "korvo/korvo.h"

namespace fuzz {

// The longest input that is tried. Faults hide in combinations, which fit into less.
inline constexpr std::size_t kMostBytes = 8192;

// Sends what the program prints to nowhere, and moves to a folder with a few short files for
// includes to find, whose names are in korvo.dict. Done once, before the first run.
void silence();

// Whether the input is worth a run: it must not include files outside the folder or ask for a very
// large number of events or draws, which would take time and find nothing. Only a cheap look: the
// allocations below are the real guard.
bool isReasonable(const std::uint8_t *data, std::size_t size);

// Begins a run: the count of large allocations starts anew. From the third chunk of events on
// memory is refused, which ends a run as it would on a full machine.
void beginRun();

// The text of the include called `name`, as the files in the folder have it.
std::optional<std::string> includeText(std::string_view name);

// A text in memory, and how much of it has been read.
struct MemoryText {
  std::string text;
  std::size_t taken = 0;
};
korvo::TextInput inputOf(MemoryText &text);

// Runs the whole program on the bytes. `arguments` are the options, closed by a null.
void runProgram(const std::uint8_t *data, std::size_t size, const char *const *arguments);

// Stops the fuzzer with the input as a finding.
[[noreturn]] void fail(const char *what);

}  // namespace fuzz
