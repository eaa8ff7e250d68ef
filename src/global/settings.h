// The settings statements RD, DV, RS, SR and PF, and what they set.
#pragma once

#include <cstdint>

#include "base/error_code.h"

namespace korvo {

struct Random;
struct SourceReader;

struct RunSettings {
  float rd = 0.0F;  // random deviation, a fraction (1 is 100 %); holds for the rest of the run
  float dv = 0.0F;  // the same for one p-field only
  float pf = 1.0F;  // every value of the p-field is stored times this factor
  std::uint64_t sampleRate = 44100;  // in Hz, for FFT bin numbers
};

// Each reads one statement, the position just behind its name, up to its ")". Errors: 19, 96, those
// of `read_line`, and readRS 29, readSR 65, readRD and readDV 28, readPF 125 and, in P2, 126.
// readPF is told the number of its p-field.
ErrorCode readRS(SourceReader &source, Random &random);
ErrorCode readSR(SourceReader &source, RunSettings &settings);
ErrorCode readRD(SourceReader &source, RunSettings &settings);
ErrorCode readDV(SourceReader &source, RunSettings &settings);
ErrorCode readPF(SourceReader &source, RunSettings &settings, int pfield);

}  // namespace korvo
