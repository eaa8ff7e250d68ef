// A piece being read, for tests: a run and a reader on a text that has no file of its own.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "ddf/loops.h"
#include "driver/run_state.h"
#include "preproc/constants.h"
#include "preproc/macros.h"
#include "reader/line_reader.h"
#include "preproc/source_reader.h"
#include "support/memory_file.h"

// A stream that gives `text`, positioned at its beginning.
inline std::FILE *streamOf(std::string_view text) {
  std::FILE *file = std::tmpfile();
  if (file == nullptr || std::fwrite(text.data(), 1, text.size(), file) != text.size() ||
      std::fseek(file, 0, SEEK_SET) != 0) {
    std::abort();
  }
  return file;
}

class Piece {
  std::unique_ptr<RunState> state = std::make_unique<RunState>();
  std::unique_ptr<SourceReader> reader = std::make_unique<SourceReader>();
  MemoryFile log;
  std::size_t told = 0;

 public:
  RunState &run = *state;
  SourceReader &source = *reader;

  explicit Piece(std::string_view text) {
    source.input = streamOf(text);
    run.screen.log.file = log.file();
  }
  Piece(const Piece &) = delete;
  Piece &operator=(const Piece &) = delete;
  ~Piece() {
    run.screen.used = 0;  // what was said is not meant for the screen
    releaseEvents(run.events);
    freeLoop(run.pfield);
    freeSegments(run.segments);
    freeMacros(run.macros);
    freeConstants(run.constants);
    std::fclose(source.input);
  }

  // Reads `count` lines; the last result that is not kOk, or kOk.
  ErrorCode read(int count = 1) {
    ErrorCode result = kOk;
    for (int i = 0; i < count && result == kOk; ++i) {
      result = read_line(run, source);
    }
    return result;
  }

  // Reads `count` lines, each a "#" statement, and runs them.
  ErrorCode define(int count = 1) {
    ErrorCode result = kOk;
    for (int i = 0; i < count && result == kOk; ++i) {
      result = read_line(run, source);
      if (result == kOk) {
        source.position = 1;
        result = source.line[1] == 'c' ? ConstStatement(run, source) : MacroStatement(run, source);
      }
    }
    messages();
    return result;
  }

  std::string line() const { return source.line; }
  std::string rest() const { return source.line + source.position; }

  // What has been said since this was asked last.
  std::string messages() {
    flushOutput(run.screen.log);
    std::string all = log.text();
    std::string fresh = all.substr(told);
    told = all.size();
    return fresh;
  }
};
