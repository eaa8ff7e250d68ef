// A text as a host hands it over, for tests.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>

#include "korvo/korvo.h"

namespace korvo {

struct StringInput {
  std::string text;
  std::size_t part = std::string::npos;  // no more bytes than this at a time
  bool fails = false;                    // where the text ends, it cannot be read on
  std::size_t taken = 0;

  // Stays valid as long as this object stays where it is.
  TextInput input() { return {this, read}; }

  static std::ptrdiff_t read(void *context, char *bytes, std::size_t size) {
    auto &self = *static_cast<StringInput *>(context);
    std::size_t count = std::min({size, self.part, self.text.size() - self.taken});
    if (count == 0) {
      return self.fails ? -1 : 0;
    }
    std::memcpy(bytes, self.text.data() + self.taken, count);
    self.taken += count;
    return static_cast<std::ptrdiff_t>(count);
  }
};

}  // namespace korvo
