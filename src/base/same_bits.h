// The bits of a number read as a number of another type: std::bit_cast, which not every C++ library
// has yet.
#pragma once

namespace korvo {

template <typename To, typename From>
constexpr To sameBits(From from) {
  return __builtin_bit_cast(To, from);
}

}  // namespace korvo
