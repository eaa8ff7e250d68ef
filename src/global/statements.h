// The statements of the global area.
#pragma once

#include "driver/error_code.h"
#include "reader/names.h"

struct RunState;
struct SourceReader;

// Runs one global statement, the position just behind its name. Error 47 for a name that is no
// global statement (PF is one: it needs a p-field); otherwise the errors of the statement.
ErrorCode RunGlobalStatement(RunState &run, SourceReader &source, CommandCode command);
