// The include pass: the whole input joined into one text, with every included file spliced in. It
// runs before anything is parsed, so line numbers in messages count the lines of the whole text.
#pragma once

#include "base/error_code.h"
#include "base/messages.h"
#include "korvo/korvo.h"
#include "preproc/origins.h"

namespace korvo {

// Copies `input`, which messages call `name`, to where the host keeps the joined text, and keeps in
// `map` what comes from where. The pass never copies more than twelve texts, the main input
// included. Prints its own messages, with their places if these are wanted: 1 and 999 mean that it
// has failed. Error 9, which is still to be told: the host could not keep all of the text.
ErrorCode include_pass(Messages &messages, const Host &host, const char *name, TextInput input,
                       SourceMap &map, bool wantsPlaces);

}  // namespace korvo
