// What pieces store and write, worked out with the functions of base/mathematics.h and with those of the C library this
// program is linked with: a table of how often they differ, in the doubles and in what becomes of them.
//
//   against_library [STEP]     every STEP-th argument; 1, the default, is all of them and takes some minutes
//
// The status is 1 when something that is stored in single precision differs. A transposition ratio is written with all
// digits that a double has, so that from some 10^9 on the C library's last bit can be seen; below it is not.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/arithmetic.h"
#include "base/mathematics.h"

namespace {

// std::bit_cast, which not every C++ library has yet.
template <typename To, typename From>
To sameBits(From from) {
  static_assert(sizeof(To) == sizeof(From));
  To to;
  std::memcpy(&to, &from, sizeof to);
  return to;
}

constexpr double kHalfPi = 1.5707963267948966;
constexpr double kSemitoneRatio = 1.059463094359;
constexpr double kLowestC = 16.35159783;
constexpr float kUnit = 4.656613e-10F;  // what a draw is multiplied by

struct Ours {
  static double exponential(double x) { return korvo::exponential(x); }
  static double powerOfTwo(double x) { return korvo::powerOfTwo(x); }
  static double logarithm(double x) { return korvo::logarithm(x); }
  static double power(double x, float y) { return korvo::power(x, y); }
  static double square(double x) { return x * x; }
  static double root(double x) { return std::sqrt(x); }
  static double fifthPower(float x) { return korvo::fifthPower(x); }
  static double sine(double x) { return korvo::sine(x); }
};

struct Theirs {
  static double exponential(double x) { return std::exp(x); }
  static double powerOfTwo(double x) { return std::exp2(x); }
  static double logarithm(double x) { return std::log(x); }
  static double power(double x, float y) { return std::pow(x, static_cast<double>(y)); }
  static double square(double x) { return power(x, 2.0F); }
  static double root(double x) { return power(x, 0.5F); }
  static double fifthPower(float x) { return power(static_cast<double>(x), 5.0F); }
  static double sine(double x) { return std::sin(x); }
};

// The double that a function gives, and what is stored of it.
struct Result {
  double value;
  float stored;
};

struct Count {
  std::uint64_t arguments = 0;
  std::uint64_t doubles = 0;
  std::uint64_t stored = 0;

  void add(const Result &ours, const Result &theirs) {
    ++arguments;
    doubles += ours.value == theirs.value ? 0U : 1U;
    stored +=
        sameBits<std::uint32_t>(ours.stored) == sameBits<std::uint32_t>(theirs.stored) ? 0U : 1U;
  }
};

std::uint32_t step = 1;
bool failed = false;

void print(const char *use, const Count &count, bool mustBeSame = true) {
  std::printf("%-34s %11llu arguments, %8llu doubles differ, %6llu stored\n", use,
              static_cast<unsigned long long>(count.arguments),
              static_cast<unsigned long long>(count.doubles),
              static_cast<unsigned long long>(count.stored));
  std::fflush(stdout);
  failed = failed || count.arguments == 0 || (mustBeSame && count.stored > 0);
}

// Every single-precision number in [low, high), low above 0.
template <typename Visit>
void visitSingles(float low, float high, Visit visit) {
  std::uint32_t end = sameBits<std::uint32_t>(high);
  for (std::uint32_t bits = sameBits<std::uint32_t>(low); bits < end; bits += step) {
    visit(sameBits<float>(bits));
  }
}

// Every number that a draw in 1..2147483647 can become: those from 2^24 on are rounded to 24 bits.
template <typename Visit>
void visitDraws(Visit visit) {
  for (std::uint32_t draw = 1; draw < (1U << 24U); draw += step) {
    visit(static_cast<float>(draw) * kUnit);
  }
  visitSingles(0x1p24F, 0x1.000002p31F, [&](float draw) { visit(draw * kUnit); });
}

template <typename Library>
Result towardsLow(float u) {
  double value = Library::logarithm(static_cast<double>(u));
  return {value, static_cast<float>(value / static_cast<double>(-6.9078F))};
}

template <typename Library>
Result doubleExponential(float t) {
  double value = Library::logarithm(static_cast<double>(t));
  return {value, static_cast<float>(value / 14.0)};
}

template <typename Library>
Result bothEnds(float u) {
  double value = Library::fifthPower(u);
  return {value, static_cast<float>(value)};
}

void compareDraws() {
  Count low;
  Count exponential;
  Count ends;
  visitDraws([&](float u) {
    low.add(towardsLow<Ours>(u), towardsLow<Theirs>(u));
    ends.add(bothEnds<Ours>(u), bothEnds<Theirs>(u));
    float t = 2.0F * u;
    if (t != 2.0F) {
      t = t > 1.0F ? 2.0F - t : t;
      exponential.add(doubleExponential<Ours>(t), doubleExponential<Theirs>(t));
    }
  });
  print("distributions l, h", low);
  print("distribution x", exponential);
  print("distribution b", ends);
}

template <typename Library>
Result amplitude(int decibels) {
  double value = Library::exponential(decibels * korvo::kDecibelExponent);
  return {value, static_cast<float>(std::trunc(value))};
}

template <typename Library>
Result decibels(double amplitude) {
  double value = Library::logarithm(amplitude);
  return {value, static_cast<float>(value / korvo::kDecibelExponent)};
}

void compareDecibels() {
  Count read;
  for (int decibels = 0; decibels <= 96; ++decibels) {
    read.add(amplitude<Ours>(decibels), amplitude<Theirs>(decibels));
  }
  print("mode db", read);
  Count written;
  for (std::uint32_t whole = 1; whole < (1U << 24U); whole += step) {
    written.add(decibels<Ours>(whole), decibels<Theirs>(whole));
  }
  visitSingles(0x1p24F, 0x1.000002p63F, [&](float whole) {
    written.add(decibels<Ours>(static_cast<double>(whole)),
                decibels<Theirs>(static_cast<double>(whole)));
  });
  print("output db", written);
}

template <typename Library>
Result frequency(float semitones) {
  double octave = static_cast<double>(static_cast<std::int32_t>(semitones) / 12);
  double value = Library::powerOfTwo(
      octave + static_cast<double>(korvo::remainderOf(semitones, 12.0F)) / 12.0);
  return {value, static_cast<float>(value * kLowestC)};
}

// Beyond 1500 semitones a frequency is 0 or infinite; below a thousand-millionth of one it is that of the C.
void compareFrequencies() {
  Count count;
  visitSingles(1e-9F, 2048.0F, [&](float semitones) {
    count.add(frequency<Ours>(semitones), frequency<Theirs>(semitones));
    count.add(frequency<Ours>(-semitones), frequency<Theirs>(-semitones));
  });
  print("output hz, bn", count);
}

bool writtenAlike(double a, double b) {
  char textA[400];
  char textB[400];
  std::snprintf(textA, sizeof textA, "%.6f", a);
  std::snprintf(textB, sizeof textB, "%.6f", b);
  return std::strcmp(textA, textB) == 0;
}

void compareRatio(Count &count, float semitones) {
  double ours = Ours::power(kSemitoneRatio, semitones);
  double theirs = Theirs::power(kSemitoneRatio, semitones);
  bool same = ours == theirs || writtenAlike(ours, theirs);
  count.add({ours, 0.0F}, {theirs, same ? 0.0F : 1.0F});
}

// From 960 semitones on a ratio has more than 24 digits. Here "stored" is the text.
void compareRatios() {
  struct {
    const char *use;
    float low, high;
    bool mustBeSame;
  } parts[] = {{"output tr, below 120 semitones", 1e-9F, 120.0F, true},
               {"output tr, 120 to 240", 120.0F, 240.0F, false},
               {"output tr, 240 to 480", 240.0F, 480.0F, false},
               {"output tr, 480 to 960", 480.0F, 960.0F, false}};
  for (const auto &part : parts) {
    Count count;
    visitSingles(part.low, part.high, [&](float semitones) {
      compareRatio(count, semitones);
      compareRatio(count, -semitones);
    });
    print(part.use, count, part.mustBeSame);
  }
}

class Chance {
 public:
  std::uint32_t below(std::uint32_t end) {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    return static_cast<std::uint32_t>(state_ >> 33U) % end;
  }
  // A number as it stands in a piece, with up to three digits behind the point.
  float written(std::uint32_t end) {
    constexpr float kParts[] = {1.0F, 10.0F, 100.0F, 1000.0F};
    float part = kParts[below(4)];
    return static_cast<float>(below(end * static_cast<std::uint32_t>(part))) / part;
  }

 private:
  std::uint64_t state_ = 1;
};

struct Curve {
  double u;  // how much of the way has gone by
  float from, to, exponent;
};

// Half of them by events, half by beats.
Curve drawCurve(Chance &chance) {
  Curve curve{};
  if (chance.below(2) == 0) {
    std::uint32_t last = 1 + chance.below(2000);
    curve.u = static_cast<double>(chance.below(last + 1)) / static_cast<double>(last);
  } else {
    float length = 0.001F + chance.written(200);
    float gone = length * static_cast<float>(chance.below(1U << 24U)) * 0x1p-24F;
    curve.u = static_cast<double>(gone) / static_cast<double>(length);
  }
  curve.from = chance.written(10000) - 5000.0F;
  curve.to = chance.written(10000) - 5000.0F;
  curve.exponent = 0.001F + chance.written(10);
  return curve;
}

Result onTheWay(const Curve &curve, double value, double shape) {
  double way = static_cast<double>(curve.to) - static_cast<double>(curve.from);
  return {value, static_cast<float>(static_cast<double>(curve.from) + way * shape)};
}

template <typename Library>
Result follow(const Curve &curve, int shape) {
  double u = curve.u;
  double value = 0.0;
  switch (shape) {
    case 0:
      value = Library::square(u);
      break;
    case 1:
      value = Library::root(u);
      break;
    case 2:
      value = Library::power(u, curve.exponent);
      break;
    default:
      value = Library::sine(u * kHalfPi);
  }
  return onTheWay(curve, value, shape < 4 ? value : u - (value - u));
}

void compareCurves() {
  constexpr const char *kUses[] = {"curve e", "curve l", "curve v", "curve s", "curve c"};
  constexpr std::uint32_t kCount = 10000000;
  for (int shape = 0; shape < 5; ++shape) {
    Chance chance;
    Count count;
    for (std::uint32_t i = 0; i < kCount; i += step) {
      Curve curve = drawCurve(chance);
      count.add(follow<Ours>(curve, shape), follow<Theirs>(curve, shape));
    }
    print(kUses[shape], count);
  }
}

}  // namespace

int main(int argc, char **argv) {
  step = argc == 2 ? static_cast<std::uint32_t>(std::strtoul(argv[1], nullptr, 10)) : 1;
  if (step == 0 || argc > 2) {
    return 2;
  }
  compareDraws();
  compareDecibels();
  compareFrequencies();
  compareRatios();
  compareCurves();
  return failed ? 1 : 0;
}
