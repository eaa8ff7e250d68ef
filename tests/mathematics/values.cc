// The functions of base/mathematics.h as a program. The tests beside it compare what it prints with exact values, and
// between compilers, switches and systems.
//
//   values < LINES     a function and its arguments in each, the numbers as bits in base 16; its value, likewise
//   values --digest    one number for each function, made of its values at 200,000 places
#include <cstdint>
#include <cstdio>
#include <cstring>

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

struct Range {
  double low, high;
};

// The places for the digest lie in `first` and `second`, as far as there are two arguments.
struct Function {
  const char *name;
  double (*value)(double, double);
  Range first, second;
};

double exponential(double x, double /*unused*/) { return korvo::exponential(x); }
double powerOfTwo(double x, double /*unused*/) { return korvo::powerOfTwo(x); }
double logarithm(double x, double /*unused*/) { return korvo::logarithm(x); }
double power(double x, double y) { return korvo::power(x, static_cast<float>(y)); }
double fifthPower(double x, double /*unused*/) { return korvo::fifthPower(static_cast<float>(x)); }
double sine(double x, double /*unused*/) { return korvo::sine(x); }

constexpr Function kFunctions[] = {
    {"exponential", exponential, {-750.0, 720.0}, {}},
    {"powerOfTwo", powerOfTwo, {-1100.0, 1100.0}, {}},
    {"logarithm", logarithm, {0.0, 1e5}, {}},
    {"power", power, {0.0, 2.0}, {0.0, 100.0}},
    {"fifthPower", fifthPower, {0.0, 1.0}, {}},
    {"sine", sine, {0.0, 1.570796}, {}},
};

// Numbers from 0 to 1, which thin out towards 0 in every second one.
class Places {
 public:
  double next() {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    double place = static_cast<double>(state_ >> 11U) * 0x1p-53;
    odd_ = !odd_;
    return odd_ ? place * place * place * place : place;
  }
  double next(const Range &range) { return range.low + (range.high - range.low) * next(); }

 private:
  std::uint64_t state_ = 1;
  bool odd_ = false;
};

void printDigests() {
  constexpr int kCount = 200000;
  for (const Function &function : kFunctions) {
    Places places;
    std::uint64_t digest = 14695981039346656037U;
    for (int i = 0; i < kCount; ++i) {
      double x = places.next(function.first);
      double value = function.value(x, places.next(function.second));
      digest = (digest ^ sameBits<std::uint64_t>(value)) * 1099511628211U;
      digest ^= digest >> 29U;
    }
    std::printf("%s %016llx\n", function.name, static_cast<unsigned long long>(digest));
  }
}

double fromBits(unsigned long long bits) {
  return sameBits<double>(static_cast<std::uint64_t>(bits));
}

bool printValues() {
  char name[32];
  unsigned long long x = 0;
  unsigned long long y = 0;
  while (std::scanf("%31s %llx %llx", name, &x, &y) == 3) {
    for (const Function &function : kFunctions) {
      if (std::strcmp(function.name, name) == 0) {
        double value = function.value(fromBits(x), fromBits(y));
        std::printf("%016llx\n", static_cast<unsigned long long>(sameBits<std::uint64_t>(value)));
      }
    }
  }
  return std::feof(stdin) != 0;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc == 2 && std::strcmp(argv[1], "--digest") == 0) {
    printDigests();
    return 0;
  }
  return argc == 1 && printValues() ? 0 : 2;
}
