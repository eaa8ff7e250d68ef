// Every statement is a name, "(", one value, ")"; what differs is the kind of value and what is
// done with it.
#include "ddf/settings.h"

#include <cstdlib>

#include "driver/run_state.h"
#include "reader/lexical.h"
#include "reader/numbers.h"

namespace {

constexpr float kLargestDeviation = 100.0F;  // 100 itself is fine

// From behind the value to behind the ")".
ErrorCode closeStatement(RunState &run, SourceReader &source) {
  ErrorCode error = skip_blanks(run, source);
  if (error > 0) {
    return error;
  }
  if (current(source) != ')') {
    return kMissingParenthesis;
  }
  ++source.position;
  return kOk;
}

// The whole statement: `readNumber` reads its value, `unreadable` is the error when it cannot.
template <typename Number>
ErrorCode readStatement(RunState &run, SourceReader &source,
                        bool (*readNumber)(Number &, const char *, std::int32_t &),
                        ErrorCode unreadable, Number &value) {
  ErrorCode error = openStatement(run, source);
  if (error <= 0) {
    error = skip_blanks(run, source);
  }
  if (error > 0) {
    return error;
  }
  if (!readNumber(value, source.line, source.position)) {
    return unreadable;
  }
  return closeStatement(run, source);
}

ErrorCode readDeviation(RunState &run, SourceReader &source, float &setting) {
  float value = 0.0F;
  ErrorCode error = readStatement(run, source, read_float, kBadDeviation, value);
  if (error > 0) {
    return error;
  }
  setting = value;
  if (value < 0.0F || value > kLargestDeviation) {
    return kBadDeviation;
  }
  if (value > 1.0F) {
    warn(run, source, kLargeDeviation);
  }
  return kOk;
}

}  // namespace

ErrorCode readRS(RunState &run, SourceReader &source) {
  unsigned seed = 0;
  ErrorCode error = readStatement(run, source, read_ushort, kBadSeed, seed);
  if (error == kOk) {
    std::srand(seed);
  }
  return error;
}

ErrorCode readSR(RunState &run, SourceReader &source) {
  std::uint64_t rate = 0;
  ErrorCode error = readStatement(run, source, read_ulong, kBadSampleRate, rate);
  if (error == kOk) {
    run.settings.sampleRate = rate;
  }
  return error;
}

ErrorCode readRD(RunState &run, SourceReader &source) {
  return readDeviation(run, source, run.settings.rd);
}

ErrorCode readDV(RunState &run, SourceReader &source) {
  return readDeviation(run, source, run.settings.dv);
}

ErrorCode readPF(RunState &run, SourceReader &source) {
  if (run.pfield.number == 2) {
    return kFactorNeedsP3;
  }
  float factor = 1.0F;
  ErrorCode error = readStatement(run, source, read_float, kBadFactor, factor);
  if (error == kOk) {
    run.settings.pf = factor;
  }
  return error;
}
