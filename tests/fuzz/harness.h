// What the fuzzers share: an input becomes a file in memory, and what the program writes to its
// streams is dropped. Sanitizers and libFuzzer write past the streams, so their reports are seen.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

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

// Begins a run: the generator's sequence starts anew, and so does the count of large allocations.
// From the third chunk of events on memory is refused, which ends a run as it would on a full
// machine.
void beginRun();

// The bytes as a file open for reading; null when there is no memory for it. `path` has room for
// 64 characters and gets a name under which the file can be opened again while it is open.
std::FILE *memoryFile(const std::uint8_t *data, std::size_t size, char *path);

// Runs the whole program on the bytes. `arguments` are the options, closed by a null.
void runProgram(const std::uint8_t *data, std::size_t size, const char *const *arguments);

// Stops the fuzzer with the input as a finding.
[[noreturn]] void fail(const char *what);

}  // namespace fuzz
