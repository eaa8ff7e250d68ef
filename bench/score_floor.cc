// The floor of the common piece: its draws, column by column as Korvo makes them, and its score to
// the byte.
//
//   score_floor EVENTS OUTFILE
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "floor.h"

namespace {

using namespace bench;

struct Event {
  float start;
  float duration;
  float parameter;       // P4
  std::uint32_t choice;  // P5
};

constexpr char kChoices[5][11] = {"  100.000 ", "  200.000 ", "  300.000 ", "  400.000 ",
                                  "  500.000 "};

// Draws until the new position lies in the window around the present one.
float walk(Draws &draws, float position) {
  constexpr float kWindow = 0.1F;
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
    position = draws.unit();
  } while (position < low || position > high);
  return position;
}

// The first four columns; the fifth is drawn as it is written.
void drawColumns(Draws &draws, Event *events, std::size_t count) {
  float start = 0.0F;
  for (std::size_t i = 0; i < count; ++i) {
    events[i].start = start;
    start += drawRange(draws, 0.01F, 0.1F, 1);
  }
  for (std::size_t i = 0; i < count; ++i) {
    events[i].duration = drawRange(draws, 1000.1F, 1000.5F, 2) - 1000.0F;
  }
  for (std::size_t i = 0; i < count; ++i) {
    events[i].parameter = drawRange(draws, 0.0F, 1000.0F, 1);
  }
  for (std::size_t i = 0; i < count; ++i) {
    draws.skip(1);
    events[i].choice = draws.number() % 5;
    draws.skip(1);
  }
}

// A number with three decimals and a blank behind it.
template <int width>
char *writeNumber(char *out, float value) {
  std::uint32_t thousandths = rounded(value, 1000.0);
  out = writeWhole<width - 3>(out, thousandths / 1000);
  std::memcpy(out, kZeroBlank[thousandths % 1000].data(), 4);
  return out + 4;
}

void writeEvents(Draws &draws, const Event *events, std::size_t count, Output &output) {
  float position = 0.5F;
  for (std::size_t i = 0; i < count; ++i) {
    draws.skip(1);
    float next = walk(draws, position);
    draws.skip(1);
    char *out = output.line();
    std::memcpy(out, "\ni1 ", 4);
    out = writeNumber<8>(out + 4, events[i].start);
    out = writeNumber<7>(out - 1, events[i].duration);  // six columns, with the blank before them
    out = writeNumber<9>(out, events[i].parameter);
    std::memcpy(out, kChoices[events[i].choice], 10);
    output.end = writeNumber<9>(out + 10, position);
    position = next;
  }
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 3) {
    return 1;
  }
  std::size_t count = std::strtoul(argv[1], nullptr, 10);
  auto events = std::make_unique_for_overwrite<Event[]>(count);
  auto output = std::make_unique<Output>(create(argv[2]));
  Draws draws;
  drawColumns(draws, events.get(), count);
  output->put("\n;I-block #1 (i1):");
  writeEvents(draws, events.get(), count, *output);
  output->put("\n\ne\n");
  output->flush();
  return 0;
}
