// The number formatter beside printf: the same bytes for every number, width and precision. The
// number is taken as a double, as the float that a score is made of, as a short decimal and as an
// integer.
#include "base/number_format.h"

#include <cstring>
#include <string>
#include <vector>

#include "harness.h"

namespace {

using namespace korvo;

void checkReal(double value, int width, int decimals) {
  // Exactly as much room as is promised, on the heap, where a byte too many is noticed.
  std::vector<char> written(kLongestNumber);
  char *end = writeFixed(written.data(), value, width, decimals);
  char expected[512];
  int length = std::snprintf(expected, sizeof expected, "%*.*f", width, decimals, value);
  if (std::string(written.data(), end) != std::string(expected, static_cast<std::size_t>(length))) {
    fuzz::fail("writeFixed and printf differ");
  }
}

void checkInteger(std::int64_t value, int width) {
  std::vector<char> written(kLongestNumber);
  char *end = writeInteger(written.data(), value, width);
  char expected[512];
  int length =
      std::snprintf(expected, sizeof expected, "%*lld", width, static_cast<long long>(value));
  if (std::string(written.data(), end) != std::string(expected, static_cast<std::size_t>(length))) {
    fuzz::fail("writeInteger and printf differ");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size < 10) {
    return -1;
  }
  int width = data[0] % 65;
  int decimals = data[1] % (kMostDecimals + 1);
  std::int64_t integer = 0;
  double real = 0.0;
  float single = 0.0F;
  std::memcpy(&integer, data + 2, sizeof integer);
  std::memcpy(&real, data + 2, sizeof real);
  std::memcpy(&single, data + 2, sizeof single);
  checkReal(real, width, decimals);
  checkReal(static_cast<double>(single), width, decimals);
  checkReal(static_cast<double>(static_cast<float>(integer % 100000000) / 1000.0F), width,
            decimals);
  checkReal(static_cast<double>(integer % 10000000000) / 64.0, width, decimals);
  checkInteger(integer, width);
  checkInteger(integer >> (data[2] % 64), width);
  return 0;
}
