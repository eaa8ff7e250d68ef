// A piece being read, for tests: a run on a text, and what a listener has been told of it.
#pragma once

#include <cstdlib>
#include <string>
#include <string_view>

#include "driver/run_state.h"
#include "global/const_statement.h"
#include "global/macro_statements.h"
#include "reader/line_reader.h"
#include "support/string_input.h"

namespace korvo {

class Piece {
  Run *run;
  std::string told;        // messages since they were asked for last
  std::string toldAtOnce;  // those on standard output
  std::string made;        // the score or the MIDI file
  std::string echoed;      // the lines after expansion, each with a line feed

  static Run *begunRun() {
    Run *begun = newRun();
    return begun != nullptr ? begun : (std::abort(), nullptr);
  }

  static void takeMessage(void *context, const Message &message) {
    auto &self = *static_cast<Piece *>(context);
    (message.onStandardOutput ? self.toldAtOnce : self.told) += message.printed;
  }
  static void takeOutput(void *context, const char *bytes, std::size_t size) {
    static_cast<Piece *>(context)->made.append(bytes, size);
  }
  static void takeExpanded(void *context, const char *line, std::size_t size) {
    static_cast<Piece *>(context)->echoed.append(line, size).append("\n");
  }

 public:
  StringInput text;
  SourceReader &source;
  Generation &making;
  GlobalState &global;
  Random &random;
  OutputBuffer &output;

  explicit Piece(std::string_view pieceText)
      : run(begunRun()),
        text{std::string(pieceText)},
        source(run->source),
        making(run->making),
        global(making.global),
        random(global.random),
        output(run->output) {
    Listener listener;
    listener.context = this;
    listener.message = takeMessage;
    listener.output = takeOutput;
    run->messages.listener = listener;
    output.listener = listener;
    source.input.text = text.input();
    source.messages = &run->messages;
    source.random = &random;
    source.values.tempo = &global.tempo.current;
    making.messages = &run->messages;
    global.score = &output;
    seedRandom(random, 1);
  }
  Piece(const Piece &) = delete;
  Piece &operator=(const Piece &) = delete;
  ~Piece() { freeRun(run); }

  // Reads `count` lines; the last result that is not kOk, or kOk.
  ErrorCode read(int count = 1) {
    ErrorCode result = kOk;
    for (int i = 0; i < count && result == kOk; ++i) {
      result = read_line(source);
    }
    return result;
  }

  // Reads `count` lines, each a "#" statement, and runs them.
  ErrorCode define(int count = 1) {
    ErrorCode result = kOk;
    for (int i = 0; i < count && result == kOk; ++i) {
      result = read_line(source);
      if (result == kOk) {
        source.position = 1;
        result = source.line[1] == 'c' ? ConstStatement(source) : MacroStatement(source);
      }
    }
    messages();
    return result;
  }

  std::string line() const { return source.line; }
  std::string rest() const { return source.line + source.position; }

  // What has been said since this was asked last, but for standard output.
  std::string messages() {
    std::string fresh;
    fresh.swap(told);
    return fresh;
  }
  std::string onStandardOutput() const { return toldAtOnce; }

  // All that has been made so far of the score or the MIDI file.
  std::string written() {
    flushOutput(output);
    return made;
  }

  // From here on lines are kept as they stand after their expansion.
  void keepExpanded() { source.messages->listener.expanded = takeExpanded; }
  std::string expanded() const { return echoed; }
};

}  // namespace korvo
