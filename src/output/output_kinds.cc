// Pitches are semitones above 16.35159783 Hz, the C of the octave that "op" and "od" number 4: 48
// is 8.00. Arithmetic is in single precision where nothing else is said, so that a score does not
// change with the machine.
#include "output/output_kinds.h"

#include <cmath>

#include "base/arithmetic.h"
#include "base/characters.h"
#include "base/mathematics.h"

namespace korvo {

namespace {

constexpr double kLowestC = 16.35159783;  // Hz
constexpr double kSemitoneRatio = 1.059463094359;
constexpr float kSemitones = 12.0F;  // of an octave
constexpr float kFftSizes[] = {256.0F,  512.0F,  1024.0F,  2048.0F,
                               4096.0F, 8192.0F, 16384.0F, 16384.0F};

// The octave as it is numbered in scores, and the semitones above it, with the sign of the value.
std::int32_t octaveOf(float value) { return toInt32(static_cast<double>(value)) / 12; }
float semitoneOf(float value) { return remainderOf(value, kSemitones); }

float frequencyOf(float value) {
  double octaves =
      static_cast<double>(octaveOf(value)) + static_cast<double>(semitoneOf(value)) / 12.0;
  return static_cast<float>(powerOfTwo(octaves) * kLowestC);
}

double unchanged(const PfieldFormat & /*format*/, std::uint64_t /*sampleRate*/, float value) {
  return static_cast<double>(value);
}

double rounded(const PfieldFormat & /*format*/, std::uint64_t /*sampleRate*/, float value) {
  return static_cast<double>(roundHalfUp(value));
}

double decibels(const PfieldFormat & /*format*/, std::uint64_t /*sampleRate*/, float value) {
  std::int64_t amplitude = toInt64(static_cast<double>(roundHalfUp(value)));
  return static_cast<double>(
      static_cast<float>(logarithm(static_cast<double>(amplitude)) / kDecibelExponent));
}

double frequency(const PfieldFormat & /*format*/, std::uint64_t /*sampleRate*/, float value) {
  return static_cast<double>(frequencyOf(value));
}

double octavePitchClass(const PfieldFormat & /*format*/, std::uint64_t /*sampleRate*/,
                        float value) {
  float octave = static_cast<float>(static_cast<std::int64_t>(octaveOf(value)) + 4);
  return static_cast<double>(octave + semitoneOf(value) / 100.0F);
}

double octaveDecimal(const PfieldFormat & /*format*/, std::uint64_t /*sampleRate*/, float value) {
  float octave = static_cast<float>(static_cast<std::int64_t>(octaveOf(value)) + 4);
  return static_cast<double>(octave + semitoneOf(value) / kSemitones);
}

double transposition(const PfieldFormat & /*format*/, std::uint64_t /*sampleRate*/, float value) {
  return power(kSemitoneRatio, value);
}

double fftBin(const PfieldFormat &format, std::uint64_t sampleRate, float value) {
  float binWidth = static_cast<float>(sampleRate) / kFftSizes[format.fftIndex];
  return static_cast<double>(roundHalfUp(frequencyOf(value) / binWidth));
}

// clang-format off
constexpr OutputKind kKinds[] = {
    {kRE, "re", unchanged, 6, kOwnPrecision},
    {kIN, "in", rounded, 5, kWhole},
    {kDB, "db", decibels, 4, 1},
    {kHZ, "hz", frequency, 11, 5},
    {kOP, "op", octavePitchClass, 6, 3},
    {kOD, "od", octaveDecimal, 4, 2},
    {kTR, "tr", transposition, 8, 6},
    {kBN, "bn", fftBin, 5, kWhole},
    {kXX, "xx", nullptr, 0, 0},
};
// clang-format on

}  // namespace

const OutputKind &outputKind(CommandCode code) {
  for (const OutputKind &kind : kKinds) {
    if (kind.code == code) {
      return kind;
    }
  }
  return kKinds[0];
}

bool isOutputKindName(const char *text) {
  for (const OutputKind &kind : kKinds) {
    if (toLower(text[0]) == kind.name[0] && toLower(text[1]) == kind.name[1]) {
      return true;
    }
  }
  return false;
}

}  // namespace korvo
