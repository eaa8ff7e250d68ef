// Memory refused to the library at every allocation in turn, once and for good: `render` tells
// error 32 or does without and is right, and nothing of what a run has got is left behind.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "faces/same.h"
#include "korvo/korvo.h"

extern "C" {
// The C library's own entries; all memory of this program is got through the ones below.
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);
void __libc_free(void *memory);
}

namespace {

// A constant and a loop have their own words for it.
constexpr int kRefusals[] = {32, 45, 102};

bool counting = false;
bool refusesOn = false;  // all allocations behind the refused one, too
long counted = 0;
long live = 0;
long refuseAt = 0;  // 0: none

bool refuse() {
  if (!counting) {
    return false;
  }
  ++counted;
  bool refused = counted == refuseAt || (refusesOn && refuseAt > 0 && counted > refuseAt);
  errno = refused ? ENOMEM : errno;
  return refused;
}

void *got(void *memory) {
  live += counting && memory != nullptr ? 1 : 0;
  return memory;
}

}  // namespace

extern "C" {

void *malloc(std::size_t size) { return refuse() ? nullptr : got(__libc_malloc(size)); }

void *calloc(std::size_t count, std::size_t size) {
  return refuse() ? nullptr : got(__libc_calloc(count, size));
}

void *realloc(void *memory, std::size_t size) {
  if (refuse()) {
    return nullptr;
  }
  return memory == nullptr ? got(__libc_realloc(nullptr, size)) : __libc_realloc(memory, size);
}

void free(void *memory) {
  live -= counting && memory != nullptr ? 1 : 0;
  __libc_free(memory);
}
}

namespace {

struct Case {
  std::string text;
  bool ok;  // as long as there is memory
  korvo::RenderOptions options;
};

std::optional<std::string> openPart(const std::string &name) {
  constexpr const char *kPart = "#const included 1\n; a text that is too long to lie in a string\n";
  return name == "part" ? std::optional<std::string>(kPart) : std::nullopt;
}

std::string repeated(int count, const char *text) {
  std::string all;
  for (int i = 0; i < count; ++i) {
    all += text;
  }
  return all;
}

// Macros and constants, more than their tables begin with room for, a line with many replacements.
std::string namesPiece() {
  std::string text;
  for (int i = 0; i < 70; ++i) {
    std::string number = std::to_string(i);
    text += "#define m" + number + "(a, b) #$a $b#\n#const c" + number + " " + number + ".5\n";
  }
  text += "#define long #" + repeated(400, " 1") + "#\n#undef m3\n#include |part|\n";
  return text + "i1 = 5 0 -20 { p2 1 p3 $m7(.5'~c0) p4 $long p5 ~[c1 * 2]" +
         repeated(100, " ~included") + " }\n";
}

// Every data function, lists and loops beyond their first room, chords.
std::string valuesPiece() {
  std::string numbers = repeated(50, "1 2 ");
  return "rs(1)\nte(90) te(4 8 90 120 e)\ni1 = 9 0 -300 {\n"
         "p2 <RA(T*.01 1 [.1 .2]) .25 x90>\np3 MS(T*.1 1 [" +
         numbers + "] [" + numbers + "]) HO(40 1)\np4 SE(T*.1 .5 * [" + numbers + "] .5 x [" +
         numbers + "]) <1 : 2 x70>\np5 RW(T*.1 1 [0 1] .5 .5) S2(50 1 * [" + repeated(70, "1:2 ") +
         "])\np6 EX(T 1 [p4 * 2" + repeated(80, " + 1") + "])\np7 MO(T 1 e 0 1)\np8(in) <" +
         numbers + ">\np9 <SE(100 1 [" + numbers + "])>\n}\n";
}

std::vector<Case> allCases() {
  std::vector<Case> cases = {
      {namesPiece(), true, {}},
      {valuesPiece(), true, {}},
      {valuesPiece(), true, {}},
      {"i1 = 3 0 -33000 { p2 1 p3 1 }", true, {}},
      {"i1 = 4 0 -40 { p2 1 p3 1 p4 1 : 2 } i2 = 3 0 -1 { p2 1 p3 1 }", true, {}},
      {"i1 = 3 0 -2 { p2 1 p3 $unknown }", false, {}},
      {"#include |nowhere|", false, {}}};
  cases[0].options.expanded = true;
  cases[1].options.events = false;  // each would be an allocation of its own
  cases[2].options.midi = true;
  cases[3].options.events = false;
  for (Case &each : cases) {
    each.options.include = openPart;
  }
  return cases;
}

int faults = 0;

void expect(bool right, int number, const char *what) {
  if (!right) {
    ++faults;
    std::printf("case %d, allocation %ld%s: %s\n", number, refuseAt,
                refusesOn ? " and all behind it" : "", what);
  }
}

// A run with the allocation `at` refused; what it has given, and whether it has got so far.
bool renderRefused(const Case &piece, int number, long at, korvo::Result &result) {
  refuseAt = at;
  counted = 0;
  live = 0;
  counting = true;
  {
    korvo::Result given = korvo::render(piece.text, piece.options);
    counting = false;
    result = given;
    counting = true;
  }
  counting = false;
  expect(live == 0, number, "memory that was never freed");
  return counted >= at;
}

// Without memory to find places, messages have none; all else must be there.
bool isRight(const korvo::Result &result, const korvo::Result &right) {
  korvo::Result placeless = right;
  for (korvo::MessageData &message : placeless.messages) {
    message.place = {};
    message.body = {};
  }
  return same(result, right) || same(result, placeless);
}

// Where no memory comes any more there may be none for the message either.
bool tellsIt(const korvo::Result &result) {
  if (result.messages.empty()) {
    return refusesOn && !result.ok;
  }
  const korvo::MessageData &last = result.messages.back();
  return !result.ok && last.severity == korvo::Severity::kError &&
         std::find(std::begin(kRefusals), std::end(kRefusals), last.number) !=
             std::end(kRefusals) &&
         last.text == korvo::errorText(last.number);
}

void runCase(const Case &piece, int number) {
  korvo::Result right;
  korvo::Result result;
  renderRefused(piece, number, 0, right);
  long allocations = counted;
  long told = 0;
  for (long at = 1; renderRefused(piece, number, at, result); ++at) {
    bool without = isRight(result, right);
    told += without ? 0 : 1;
    expect(without || tellsIt(result), number,
           result.messages.empty() ? "nothing told" : result.messages.back().text.c_str());
  }
  expect(told > 2, number, "memory was hardly needed");
  expect(right.ok == piece.ok, number, right.messages.back().text.c_str());
  std::printf("case %d: %ld allocations, %ld refusals told\n", number, allocations, told);
}

}  // namespace

int main() {
  std::vector<Case> cases = allCases();
  for (bool forGood : {false, true}) {
    refusesOn = forGood;
    for (std::size_t i = 0; i < cases.size(); ++i) {
      runCase(cases[i], static_cast<int>(i));
    }
  }
  return faults == 0 ? 0 : 1;
}
