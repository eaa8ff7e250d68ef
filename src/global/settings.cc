// Every statement is a name, "(", one value, ")"; what differs is the kind of value and what is
// done with it.
#include "global/settings.h"

#include "base/numbers.h"
#include "preproc/source_reader.h"
#include "reader/lexical.h"

namespace korvo {

namespace {

constexpr float kLargestDeviation = 100.0F;  // 100 itself is fine

// From behind the value to behind the ")".
ErrorCode closeStatement(SourceReader &source) {
  RETURN_IF_ERROR(skip_blanks(source));
  if (current(source) != ')') {
    return kMissingParenthesis;
  }
  ++source.position;
  return kOk;
}

// The whole statement: `readNumber` reads its value, `unreadable` is the error when it cannot.
template <typename Number>
ErrorCode readStatement(SourceReader &source,
                        bool (*readNumber)(Number &, const char *, std::int32_t &),
                        ErrorCode unreadable, Number &value) {
  RETURN_IF_ERROR(openStatement(source));
  RETURN_IF_ERROR(skip_blanks(source));
  if (!readNumber(value, source.line, source.position)) {
    return unreadable;
  }
  return closeStatement(source);
}

ErrorCode readDeviation(SourceReader &source, float &setting) {
  float value = 0.0F;
  RETURN_IF_ERROR(readStatement(source, read_float, kBadDeviation, value));
  setting = value;
  if (value < 0.0F || value > kLargestDeviation) {
    return kBadDeviation;
  }
  if (value > 1.0F) {
    warn(source, kLargeDeviation);
  }
  return kOk;
}

}  // namespace

ErrorCode readRS(SourceReader &source, Random &random) {
  unsigned seed = 0;
  RETURN_IF_ERROR(readStatement(source, read_ushort, kBadSeed, seed));
  seedRandom(random, seed);
  return kOk;
}

ErrorCode readSR(SourceReader &source, RunSettings &settings) {
  std::uint64_t rate = 0;
  RETURN_IF_ERROR(readStatement(source, read_ulong, kBadSampleRate, rate));
  settings.sampleRate = rate;
  return kOk;
}

ErrorCode readRD(SourceReader &source, RunSettings &settings) {
  return readDeviation(source, settings.rd);
}

ErrorCode readDV(SourceReader &source, RunSettings &settings) {
  return readDeviation(source, settings.dv);
}

ErrorCode readPF(SourceReader &source, RunSettings &settings, int pfield) {
  if (pfield == 2) {
    return kFactorNeedsP3;
  }
  float factor = 1.0F;
  RETURN_IF_ERROR(readStatement(source, read_float, kBadFactor, factor));
  settings.pf = factor;
  return kOk;
}

}  // namespace korvo
