// What an i-block's header says, how its p-fields are to be written, and where its clock stands.
#pragma once

#include <cstdint>

#include "reader/names.h"

namespace korvo {

inline constexpr int kMaxPfields = 128;
inline constexpr int kMinPfields = 3;

struct IBlockHeader {
  std::int32_t instrument = 0;   // negative: the block is skipped
  std::int32_t pfieldCount = 0;  // 3 to 128
  float start = 0.0F;            // seconds
  float length = 0.0F;           // beats, or minus a number of events
};

// How one p-field is written, indexed by its number.
struct PfieldFormat {
  CommandCode kind = kRE;      // the output kind
  std::int32_t precision = 3;  // decimals, of "re", P2 and P3
  std::int32_t fftIndex = 4;   // of "bn"
  bool given = false;          // the p-field has been specified
};

struct BlockState {
  IBlockHeader header;
  PfieldFormat pfields[kMaxPfields + 1];
  int number = 1;           // the block's number in messages: blocks written so far, plus 1
  std::int64_t target = 0;  // events to be filled; 0 while a block measured in beats has none yet
  float endBeat = 0.0F;     // the beat clock at which a block measured in beats is full
  float lastStart = 0.0F;   // seconds, of the event made last
  float lastRhythm = 0.0F;  // seconds, its magnitude
  int stuckEvents = 0;      // events in a row that have not moved the beat clock
};

}  // namespace korvo
