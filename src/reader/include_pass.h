// The include pass: the whole input joined into one text, with every included file spliced in. It
// runs before anything is parsed, so line numbers in messages count the lines of the whole text.
#pragma once

#include "base/error_code.h"
#include "base/messages.h"
#include "korvo/korvo.h"
#include "preproc/origins.h"

namespace korvo {

// Copies `input`, which messages call `name`, to where the host keeps the joined text, and keeps in
// `map` what comes from where. The pass never copies more than twelve
// texts, the main input included. Prints its own messages; a positive result (1, or 999) means that
// it has failed. What the host could not keep is not told here, but when it is asked to rewind.
ErrorCode include_pass(Messages &messages, const Host &host, const char *name, TextInput input,
                       SourceMap &map);

}  // namespace korvo
