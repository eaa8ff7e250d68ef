// Arrays that grow as items come: memory that is doubled, and refused without harm.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <type_traits>

namespace korvo {

// Makes sure that an array has room for `needed` plain items; it may move. False when memory is
// refused; the array is then as it was.
template <typename Item>
bool makeRoom(Item *&items, std::uint32_t &capacity, std::uint32_t needed) {
  static_assert(std::is_trivially_copyable_v<Item>, "items are moved as bytes");
  if (needed <= capacity) {
    return true;
  }
  constexpr std::uint32_t kFirst = 64;
  std::uint32_t larger = std::max({kFirst, capacity * 2, needed});
  void *memory =
      std::realloc(static_cast<void *>(items), sizeof(Item) * static_cast<std::size_t>(larger));
  if (memory == nullptr) {
    return false;
  }
  items = static_cast<Item *>(memory);
  capacity = larger;
  return true;
}

}  // namespace korvo
