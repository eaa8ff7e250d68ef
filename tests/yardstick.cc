// What clock.py measures costs with: a plain program that draws a score of six p-fields, formats its numbers with
// std::to_chars and writes them through one buffer. It is to stay as it is: the limits of the tests are numbers of it.
//
//   yardstick EVENTS OUTFILE
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr std::size_t kBufferBytes = 1 << 17;
constexpr std::size_t kLineBytes = 512;

float drawUnit() { return static_cast<float>(std::rand()) * 4.656613e-10F; }

// A value of a range, and the draws that Korvo makes beside it.
float drawUniform(float low, float high, int deviations) {
  drawUnit();
  float value = low + (high - low) * drawUnit();
  for (int i = 0; i < deviations; ++i) {
    drawUnit();
  }
  return value;
}

float drawWalk(float &position) {
  constexpr float kWindow = 0.25F;
  drawUnit();
  float value = position;
  float low = position - kWindow / 2.0F;
  float high = position + kWindow / 2.0F;
  if (low < 0.0F) {
    low = 0.0F;
    high = kWindow;
  } else if (high > 1.0F) {
    low = 1.0F - kWindow;
    high = 1.0F;
  }
  do {
    position = drawUnit();
  } while (position < low || position > high);
  drawUnit();
  return value;
}

char *writeNumber(char *out, float value, int width) {
  char digits[64];
  char *end = std::to_chars(digits, digits + sizeof digits, static_cast<double>(value),
                            std::chars_format::fixed, 3)
                  .ptr;
  for (long blanks = width - (end - digits); blanks > 0; --blanks) {
    *out++ = ' ';
  }
  std::memcpy(out, digits, static_cast<std::size_t>(end - digits));
  out += end - digits;
  *out++ = ' ';
  return out;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 3) {
    return 1;
  }
  std::size_t events = std::strtoul(argv[1], nullptr, 10);
  std::FILE *file = std::fopen(argv[2], "w");
  if (file == nullptr) {
    return 1;
  }
  std::vector<float> columns[5];
  for (std::vector<float> &column : columns) {
    column.resize(events);
  }
  float start = 0.0F;
  for (float &value : columns[0]) {
    value = start;
    start += drawUniform(0.01F, 0.1F, 1);
  }
  for (float &value : columns[1]) {
    value = drawUniform(1000.1F, 1000.5F, 2) - 1000.0F;
  }
  for (float &value : columns[2]) {
    value = drawUniform(0.0F, 1000.0F, 1);
  }
  for (float &value : columns[3]) {
    constexpr float kChoices[] = {100.0F, 200.0F, 300.0F, 400.0F, 500.0F};
    drawUnit();
    value = kChoices[std::rand() % 5];
    drawUnit();
  }
  float position = 0.5F;
  for (float &value : columns[4]) {
    value = drawWalk(position);
  }
  std::vector<char> buffer(kBufferBytes);
  char *out = buffer.data();
  constexpr char kHead[] = "\n;I-block #1 (i1):";
  constexpr int kWidths[] = {8, 6, 9, 9, 9};
  std::memcpy(out, kHead, sizeof kHead - 1);
  out += sizeof kHead - 1;
  for (std::size_t i = 0; i < events; ++i) {
    if (static_cast<std::size_t>(out - buffer.data()) > kBufferBytes - kLineBytes) {
      std::fwrite(buffer.data(), 1, static_cast<std::size_t>(out - buffer.data()), file);
      out = buffer.data();
    }
    std::memcpy(out, "\ni1 ", 4);
    out += 4;
    for (int c = 0; c < 5; ++c) {
      out = writeNumber(out, columns[c][i], kWidths[c]);
    }
  }
  std::memcpy(out, "\n\ne\n", 4);
  out += 4;
  std::fwrite(buffer.data(), 1, static_cast<std::size_t>(out - buffer.data()), file);
  return std::fclose(file) == 0 ? 0 : 1;
}
