// The one state of a run: the text that is read, the block that is made from it, and where both go.
#pragma once

#include "base/messages.h"
#include "base/output_buffer.h"
#include "ddf/generation.h"
#include "korvo/korvo.h"
#include "preproc/source_reader.h"

namespace korvo {

// The name is the public one: for callers it is a thing to hand back.
struct Run {
  Messages messages;
  SourceReader source;
  Generation making;
  OutputBuffer output;
};

}  // namespace korvo
