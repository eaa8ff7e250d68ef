// The run sequence: options, files, banner, the include pass into a temporary file, then the global
// area and the i-blocks in turn until the input is used up. The first error ends the run; whatever
// has been written by then stays.
#include "driver/run.h"

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "ddf/loops.h"
#include "driver/catalogue.h"
#include "driver/files.h"
#include "driver/run_state.h"
#include "driver/version.h"
#include "iblock/block_driver.h"
#include "reader/include_pass.h"
#include "reader/scanner.h"

namespace {

constexpr int kSuccess = 0;
constexpr int kFailure = 1;

struct Files {
  std::FILE *input = nullptr;
  // The input with its includes; read in place of it after the include pass.
  std::FILE *temporary = nullptr;
};

bool cannotOpen(const char *name) {
  std::fprintf(stderr, "\nERROR: Can't open \"%s\".\n\n", name);
  return false;
}

// Opens a file to be written, which must not be one that the run has opened already.
bool openWritten(const RunState &run, const Files &files, const char *name, std::FILE *&file) {
  std::FILE *opened = openForWriting(name);
  if (opened == nullptr) {
    return cannotOpen(name);
  }
  if (isOpenIn(opened, {files.input, run.output.file, run.expansion.file})) {
    std::fclose(opened);
    return cannotOpen(name);
  }
  file = opened;
  return true;
}

// Opens all files in their fixed order; the first that cannot be opened ends the run at once. A
// name or link that leads to the input is refused before anything is opened for writing.
bool openFiles(RunState &run, Files &files) {
  const Options &options = run.options;
  files.input = openForReading(options.inputName);
  if (files.input == nullptr) {
    return cannotOpen(options.inputName);
  }
  for (const char *name : {options.outputName, options.expansionName, options.logName}) {
    if (name != nullptr && isSameFile(name, files.input)) {
      return cannotOpen(name);
    }
  }
  if (!openWritten(run, files, options.outputName, run.output.file)) {
    return false;
  }
  if (options.expansionName != nullptr &&
      !openWritten(run, files, options.expansionName, run.expansion.file)) {
    return false;
  }
  files.temporary = openTemporary();
  if (files.temporary == nullptr) {
    std::fputs("\nERROR: Can't open temporary file\n\n", stderr);
    return false;
  }
  return options.logName == nullptr ||
         openWritten(run, files, options.logName, run.screen.log.file);
}

bool cannotWrite(const char *name) {
  std::fprintf(stderr, "\nERROR: Can't write \"%s\".\n\n", name);
  return false;
}

void sayBanner(RunState &run) {
  const Options &options = run.options;
  say(run.screen, kNameLine);
  say(run.screen, kAuthorshipLine);
  say(run.screen, kCreditLines);
  say(run.screen, "\n\nInput\t= \"%s\"\nOutput\t= \"%s\" ",
      {options.inputName, options.outputName});
  say(run.screen, options.midi ? "[MIDI file (type 1)]\n" : "[Csound score-file]\n");
  if (options.logName != nullptr) {
    say(run.screen, "Log \t= \"%s\"\n", {options.logName});
  }
  if (options.expansionName != nullptr) {
    say(run.screen, "MExp\t= \"%s\"\n", {options.expansionName});
  }
}

// Copies the input with its includes into the temporary file and goes on reading from there.
ErrorCode readIncludes(RunState &run, SourceReader &source, Files &files) {
  int counter = 0;
  ErrorCode error = include_pass(run, files.input, files.temporary, counter);
  std::fclose(files.input);
  files.input = nullptr;
  if (error > 0) {
    return kAlreadyReported;
  }
  bool complete = std::fflush(files.temporary) == 0 && std::ferror(files.temporary) == 0;
  if (!complete || std::fseek(files.temporary, 0, SEEK_SET) != 0) {
    return kTemporaryFileLost;
  }
  source.input = files.temporary;
  return kOk;
}

bool inputIsUsedUp(const SourceReader &source) { return std::feof(source.input) != 0; }

bool lineIsUsedUp(const SourceReader &source) { return current(source) == '\0'; }

// Reads on to the next i-block. At the end of the input the rest of the last line is passed over.
ErrorCode scanToBlock(RunState &run, SourceReader &source) {
  ErrorCode error = scan_to_next_iblock(run, source);
  if (error == kEndOfInput) {
    while (!lineIsUsedUp(source)) {
      ++source.position;
    }
    return kOk;
  }
  return error;
}

// All i-blocks of the input, or under -m the first. `toTheEnd` tells whether the input has been
// used up. A section that is still open is found only when nothing stands behind the last "}".
ErrorCode runBlocks(RunState &run, SourceReader &source, bool &toTheEnd) {
  toTheEnd = false;
  ErrorCode error = scanToBlock(run, source);
  while (error == kOk) {
    error = BlockDriver(run, source);
    if (error > 0) {
      return error;
    }
    if (inputIsUsedUp(source) && lineIsUsedUp(source)) {
      toTheEnd = true;
      return NoConditionalOpen(run.conditional) ? kOk : kSectionLeftOpen;
    }
    if (run.options.midi) {
      return kOk;
    }
    if (inputIsUsedUp(source)) {
      toTheEnd = true;
      return kOk;
    }
    error = scanToBlock(run, source);
  }
  return error;
}

bool closeWritten(const char *name, OutputBuffer &buffer, bool endedWell) {
  return closeOutput(buffer, endedWell) || cannotWrite(name);
}

// Frees and closes everything. False when something written has not reached its file; a log, which
// only repeats what the screen says, is passed over.
bool cleanUp(RunState &run, Files &files, bool endedWell) {
  releaseEvents(run.events);
  freeLoop(run.pfield);
  freeSegments(run.segments);
  freeMacros(run.macros);
  freeConstants(run.constants);
  flushScreen(run.screen);
  std::fclose(files.temporary);
  bool complete = closeWritten(run.options.outputName, run.output, endedWell);
  complete = closeWritten(run.options.expansionName, run.expansion, endedWell) && complete;
  closeOutput(run.screen.log, endedWell);
  return complete;
}

ErrorCode runPiece(RunState &run, SourceReader &source, Files &files) {
  ErrorCode error = readIncludes(run, source, files);
  if (error > 0) {
    return error;
  }
  bool toTheEnd = false;
  error = runBlocks(run, source, toTheEnd);
  if (error > 0) {
    return error;
  }
  if (toTheEnd) {
    if (!run.options.midi) {
      append(run.output, "\ne\n", 3);
    }
    say(run.screen, "\n\nGlobal cumulative duration of all i-blocks = %f (secs)\n",
        {run.cumulativeSeconds});
  }
  return kOk;
}

int runWith(RunState &run, SourceReader &source) {
  Files files;
  if (!openFiles(run, files)) {
    return kFailure;
  }
  run.screen.isTerminal = isatty(fileno(stderr)) != 0;
  sayBanner(run);
  ErrorCode error = runPiece(run, source, files);
  if (error > 0) {
    reportError(run, source, error);
  }
  if (!cleanUp(run, files, error <= 0) || error > 0) {
    return kFailure;
  }
  say(run.screen, "\n");
  flushScreen(run.screen);
  return kSuccess;
}

}  // namespace

int runKorvo(int argc, const char *const *argv) {
  holdStandardStreams();
  Options options;
  if (!parseOptions(argc, argv, options)) {
    return kFailure;
  }
  if (!namesAreUnique(options)) {
    std::fputs("\nERROR: You can't use a filename multiple times!\n\n", stderr);
    return kFailure;
  }
  // A closed pipe and a file that may not grow cannot be written, and are told like a full disk.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  RunState *run = new (std::nothrow) RunState;
  SourceReader *source = new (std::nothrow) SourceReader;
  int status = kFailure;
  if (run != nullptr && source != nullptr) {
    run->options = options;
    status = runWith(*run, *source);
  } else {
    std::fprintf(stderr, "\nERROR: %s\n\n", errorText(kOutOfMemory));
  }
  delete source;
  delete run;
  return status;
}
