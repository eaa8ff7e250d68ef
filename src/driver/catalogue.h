// The message catalogue: code in, text out.
#pragma once

// The text of error `code`; "Unspecified error..." for a number without an entry.
const char *errorText(int code);

// The text of warning `code` (1 to 35); "Unspecified warning..." for any other number.
const char *warningText(int code);
