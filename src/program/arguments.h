// The command line: which files, which options.
#pragma once

struct Arguments {
  const char *inputName = nullptr;
  const char *outputName = nullptr;
  const char *logName = nullptr;        // null without -l
  const char *expansionName = nullptr;  // null without -x
  bool midi = false;                    // -m: the output is a MIDI file
  bool silent = false;                  // -s: no warnings, no optional messages
  bool tempoVerbose = false;            // -t: tempo listings and conversions
};

// Reads the argument vector of `main` into `arguments`. False when the run cannot start; the usage
// text (standard error) or the message about a missing name (standard output) has then been
// written.
bool parseArguments(int argc, const char *const *argv, Arguments &arguments);

// True when no file name is used twice. Names are compared as written.
bool namesAreUnique(const Arguments &arguments);
