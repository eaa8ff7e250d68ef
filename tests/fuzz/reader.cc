// The line reader with its two scans: every line of the input is read, expanded and, when it begins
// with a statement of the preprocessor, executed. Some macros and constants are there from the
// start. What must hold of every line is checked.
#include <cstring>
#include <string>

#include "base/characters.h"
#include "driver/run_state.h"
#include "global/scanner.h"
#include "global/statements.h"
#include "harness.h"
#include "reader/line_reader.h"

namespace {

using namespace korvo;

constexpr char kPrelude[] =
    "#define a #1 2#\n#define b(x) #$x $x#\n#define c(x, y) #$b($x) $y $a#\n"
    "#define d # ; $a\n #\n#define e ##\n#define f #/* $a#\n#define g #*/#\n#define h #$h#\n"
    "#const k 2.5\n#const l -0.0005\ni1\n";

void checkLine(const SourceReader &source) {
  const void *end = std::memchr(source.line, '\0', kLineBytes);
  if (end == nullptr) {
    fuzz::fail("a line without an end");
  }
  auto length = static_cast<const char *>(end) - source.line;
  if (source.position < 0 || source.position > length) {
    fuzz::fail("a position outside the line");
  }
  if (source.definitionState < 0 || source.definitionState > 2) {
    fuzz::fail("an impossible definition state");
  }
  if (source.markedLength < 0 || source.markedLength > kLineBytes) {
    fuzz::fail("marks outside the line");
  }
  for (int i = source.markedLength; i < kLineBytes; ++i) {
    if (source.marked[i]) {
      fuzz::fail("a mark behind the last one");
    }
  }
}

ErrorCode runLine(SourceReader &source, GlobalState &global) {
  skipBlanksInLine(source.line, source.position);
  if (source.line[source.position] != '#' ||
      !lookupDdfName(source.line, source.position, global.name)) {
    return kOk;
  }
  return RunGlobalStatement(source, global, global.name.code);
}

void readAll(SourceReader &source, GlobalState &global) {
  if (scan_to_next_iblock(source, global) != kOk) {
    fuzz::fail("the prelude is not read");
  }
  for (;;) {
    ErrorCode error = read_line(source);
    checkLine(source);
    if (error == kOk) {
      error = runLine(source, global);
      checkLine(source);
    }
    if (error == kEndOfInput) {
      return;
    }
    if (error > 0) {
      reportError(source, error);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size > fuzz::kMostBytes) {
    return -1;
  }
  fuzz::beginRun();
  fuzz::MemoryText text{kPrelude};
  text.text.append(reinterpret_cast<const char *>(data), size);
  Run *run = newRun();
  SourceReader &source = run->source;
  GlobalState &global = run->making.global;
  source.input.text = fuzz::inputOf(text);
  source.messages = &run->messages;
  source.random = &global.random;
  source.values.tempo = &global.tempo.current;
  global.score = &run->output;
  seedRandom(global.random, 1);
  readAll(source, global);
  freeRun(run);
  return 0;
}
