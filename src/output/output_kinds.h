// The output kinds: how a value of P4 and above is converted and written into the score.
#pragma once

#include <cstdint>

#include "ddf/block_state.h"
#include "reader/names.h"

namespace korvo {

// One column of the score: a converted number and its format.
struct OutputKind {
  CommandCode code;
  const char *name;  // as it is written in the parentheses of a p-field
  // The number to be written; the value is in semitones for the pitch kinds, an amplitude for "db".
  // The sample rate, in Hz, is that of FFT bins. Null for a kind that writes no column at all.
  double (*convert)(const PfieldFormat &format, std::uint64_t sampleRate, float value);
  int width;
  int decimals;  // kOwnPrecision: the p-field's own, which the width grows by; kWhole: an integer
};

inline constexpr int kOwnPrecision = -1;
inline constexpr int kWhole = -2;

// The kind with this code; real numbers for one that has none.
const OutputKind &outputKind(CommandCode code);

// Whether `text` begins with the two letters (either case) of an output kind.
bool isOutputKindName(const char *text);

}  // namespace korvo
