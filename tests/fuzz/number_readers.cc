// The number readers beside the C library. A number that both read must be the same number. The
// readers know no exponents, no hexadecimal digits and no words, so the library gets only the
// characters that the reader has taken. Real numbers must agree where the digits make a whole
// number that the type holds exactly and at most nine of them stand behind the point; then both are
// the nearest number to what is written.
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

#include "base/characters.h"
#include "base/numbers.h"
#include "harness.h"

namespace {

using namespace korvo;

struct Text {
  const char *line;
  std::int32_t blanks;  // where the number begins
  std::int32_t sign;    // behind its sign
  std::int32_t digits;  // behind the digits
};

Text lookAt(const char *line) {
  Text text{line, 0, 0, 0};
  while (isSpace(line[text.blanks])) {
    ++text.blanks;
  }
  text.sign = text.blanks + (line[text.blanks] == '+' || line[text.blanks] == '-' ? 1 : 0);
  text.digits = text.sign;
  while (isDigit(line[text.digits])) {
    ++text.digits;
  }
  return text;
}

bool hasDigits(const Text &text) { return text.digits > text.sign; }

bool isNegative(const Text &text) { return text.line[text.blanks] == '-'; }

std::int32_t behindBlanks(const Text &text) {
  std::int32_t position = text.digits;
  while (isSpace(text.line[position])) {
    ++position;
  }
  return position;
}

void require(bool holds, const char *what) {
  if (!holds) {
    fuzz::fail(what);
  }
}

void checkSigned(const Text &text) {
  errno = 0;
  long long expected = std::strtoll(text.line, nullptr, 10);
  bool fits = hasDigits(text) && errno == 0;
  std::int64_t number = 77;
  std::int32_t position = 0;
  bool readable = read_long(number, text.line, position);
  require(readable == fits, "read_long and strtoll do not read the same");
  require(number == (fits ? expected : 77), "read_long gives another number than strtoll");
  require(position == (fits              ? behindBlanks(text)
                       : hasDigits(text) ? text.digits
                                         : text.sign),
          "read_long leaves the position elsewhere");

  bool isShort = fits && expected >= -32768 && expected <= 32767;
  int shortNumber = 77;
  position = 0;
  readable = read_short(shortNumber, text.line, position);
  require(readable == isShort, "read_short takes another range");
  require(shortNumber == (isShort ? expected : 77), "read_short gives another number than strtoll");
  require(position == (isShort ? text.digits : text.sign),
          "read_short leaves the position elsewhere");
}

void checkUnsigned(const Text &text) {
  errno = 0;
  unsigned long long expected = std::strtoull(text.line, nullptr, 10);
  bool readable = hasDigits(text) && !isNegative(text);
  std::int32_t notRead = isNegative(text) ? text.blanks : text.sign;
  std::uint64_t number = 77;
  std::int32_t position = 0;
  require(read_ulong(number, text.line, position) == readable,
          "read_ulong and strtoull do not read the same");
  if (!readable || errno == 0) {
    require(number == (readable ? expected : 77), "read_ulong gives another number than strtoull");
  }
  require(position == (readable ? behindBlanks(text) : notRead),
          "read_ulong leaves the position elsewhere");

  bool isShort = readable && errno == 0 && expected <= 65535;
  unsigned shortNumber = 77;
  position = 0;
  require(read_ushort(shortNumber, text.line, position) == isShort,
          "read_ushort takes another range");
  require(shortNumber == (isShort ? expected : 77),
          "read_ushort gives another number than strtoull");
  require(position == (isShort ? text.digits : notRead),
          "read_ushort leaves the position elsewhere");
}

template <typename Real>
void checkReal(const Text &text, bool (*read)(Real &, const char *, std::int32_t &),
               Real (*libraryRead)(const char *, char **), double exactBelow) {
  bool begins = hasDigits(text) || text.line[text.sign] == '.';
  Real number = 77;
  std::int32_t position = 0;
  bool readable = read(number, text.line, position);
  if (!begins) {
    require(!readable && position == text.sign, "a real number is read where none begins");
    return;
  }
  std::int32_t end = text.digits + (text.line[text.digits] == '.' ? 1 : 0);
  std::int32_t point = end;
  while (end > text.digits && isDigit(text.line[end])) {
    ++end;
  }
  require(position == end, "a real number ends elsewhere");
  if (!readable) {
    require(number == Real(77), "a number that is not read is changed");
    return;
  }
  require(std::isfinite(number), "a real number is not finite");
  std::string digits(text.line + text.sign, static_cast<std::size_t>(text.digits - text.sign));
  digits.append(text.line + point, static_cast<std::size_t>(end - point));
  bool exact = digits.size() <= 18 && end - point <= 9 &&
               std::strtod(("0" + digits).c_str(), nullptr) < exactBelow;
  if (exact) {
    std::string taken = "0" + std::string(text.line + text.sign, text.line + end);
    Real expected = libraryRead(taken.c_str(), nullptr);
    expected = isNegative(text) ? -expected : expected;
    require(std::memcmp(&expected, &number, sizeof number) == 0,
            "a real number differs from the C library's");
  }
}

void checkAll(const char *line) {
  Text text = lookAt(line);
  checkSigned(text);
  checkUnsigned(text);
  checkReal<float>(text, read_float, std::strtof, 16777216.0);
  checkReal<double>(text, read_double, std::strtod, 9007199254740992.0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size > 1024) {
    return -1;
  }
  std::string line(reinterpret_cast<const char *>(data), size);
  line = line.c_str();  // a line ends at its first NUL
  checkAll(line.c_str());
  return 0;
}
