// What both floors stand on: the random numbers, numbers as text, and output. A floor makes the same
// draws as Korvo and writes the same bytes by the best means that are known, and does nothing else:
// it reads no piece, keeps no block and knows no other settings.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace bench {

// The numbers of the GNU C library's `rand` for the seed 1: each is the sum of those 3 and 31
// before it. They are made by the thousand, with the last three in registers.
class Draws {
  static constexpr int kBehind = 31;
  static constexpr int kBlock = 3 * 1024;
  std::uint32_t numbers[kBehind + kBlock];
  int next = kBehind + kBlock;

  void make() {
    std::memcpy(numbers, numbers + kBlock, sizeof(std::uint32_t) * kBehind);
    std::uint32_t a = numbers[kBehind - 3];
    std::uint32_t b = numbers[kBehind - 2];
    std::uint32_t c = numbers[kBehind - 1];
    for (int i = kBehind; i < kBehind + kBlock; i += 3) {
      numbers[i] = a += numbers[i - kBehind];
      numbers[i + 1] = b += numbers[i - kBehind + 1];
      numbers[i + 2] = c += numbers[i - kBehind + 2];
    }
    next = kBehind;
  }

 public:
  Draws() {
    std::int64_t seeds[kBehind];
    seeds[0] = 1;
    for (int i = 1; i < kBehind; ++i) {
      seeds[i] = seeds[i - 1] * 16807 % 2147483647;
    }
    for (int i = 0; i < kBehind; ++i) {  // the first three follow the last
      numbers[kBlock + i] = static_cast<std::uint32_t>(seeds[(i + 3) % kBehind]);
    }
    skip(310);
  }

  std::uint32_t number() {
    if (next == kBehind + kBlock) {
      make();
    }
    return numbers[next++] >> 1;
  }
  float unit() { return static_cast<float>(static_cast<std::int32_t>(number())) * 4.656613e-10F; }
  void skip(int count) {
    for (int i = 0; i < count; ++i) {
      number();
    }
  }
};

// A value of a range. Korvo also draws for the choice of a segment, and for every deviation, even
// when there is nothing to choose and nothing to deviate.
inline float drawRange(Draws &draws, float low, float high, int deviations) {
  draws.skip(1);
  float value = low + (high - low) * draws.unit();
  draws.skip(deviations);
  return value;
}

// A float times a thousand is exact in double precision, and this addition rounds it to a whole
// number, halves to the even one, as `printf` does.
inline std::uint32_t rounded(float value, double times) {
  constexpr double kShift = 6755399441055744.0;  // 1.5 times 2 to the 52nd
  return static_cast<std::uint32_t>(
      std::bit_cast<std::uint64_t>(static_cast<double>(value) * times + kShift) -
      std::bit_cast<std::uint64_t>(kShift));
}

using Texts = std::array<std::array<char, 4>, 1000>;

// The numbers below a thousand in three columns, padded with `pad` and followed by `behind`.
constexpr Texts threeColumns(char pad, char behind) {
  Texts texts{};
  for (std::size_t i = 0; i < texts.size(); ++i) {
    texts[i] = {i < 100 ? pad : static_cast<char>('0' + i / 100),
                i < 10 ? pad : static_cast<char>('0' + i / 10 % 10),
                static_cast<char>('0' + i % 10), behind};
  }
  return texts;
}
inline constexpr Texts kBlankPoint = threeColumns(' ', '.');  // "  7."
inline constexpr Texts kZeroPoint = threeColumns('0', '.');   // "007."
inline constexpr Texts kZeroBlank = threeColumns('0', ' ');   // "007 "

// The whole part of a number and its point, in `width` columns (4 or more) or in as many as it takes.
template <int width>
char *writeWhole(char *out, std::uint32_t whole) {
  constexpr int kPad = width - 4;
  if (whole < 1000) {
    std::memset(out, ' ', kPad);
    std::memcpy(out + kPad, kBlankPoint[whole].data(), 4);
    return out + width;
  }
  std::uint32_t thousands = whole / 1000;
  int digits = thousands < 10 ? 1 : thousands < 100 ? 2 : 3;
  for (int pad = kPad - digits; pad > 0; --pad) {
    *out++ = ' ';
  }
  std::memcpy(out, kBlankPoint[thousands].data() + 3 - digits, static_cast<std::size_t>(digits));
  out += digits;
  std::memcpy(out, kZeroPoint[whole % 1000].data(), 4);
  return out + 4;
}

// Text on its way to a file.
class Output {
  static constexpr std::size_t kBytes = 1 << 18;
  static constexpr std::size_t kLongestLine = 128;
  int file;
  char bytes[kBytes];

 public:
  char *end = bytes;

  explicit Output(int descriptor) : file(descriptor) {}
  void flush() {
    for (const char *from = bytes; from < end;) {
      ssize_t written = write(file, from, static_cast<std::size_t>(end - from));
      if (written < 0) {
        std::exit(1);
      }
      from += written;
    }
    end = bytes;
  }
  // Where the next line goes.
  char *line() {
    if (static_cast<std::size_t>(end - bytes) > kBytes - kLongestLine) {
      flush();
    }
    return end;
  }
  template <std::size_t size>
  void put(const char (&text)[size]) {
    std::memcpy(line(), text, size - 1);
    end += size - 1;
  }
};

inline int create(const char *name) {
  int file = open(name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (file == -1) {
    std::exit(1);
  }
  return file;
}

}  // namespace bench
