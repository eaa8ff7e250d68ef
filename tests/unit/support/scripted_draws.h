// Random draws that a test writes down beforehand. While a script is alive, std::rand gives its
// numbers one after another; without one it is the library's own.
#pragma once

#include <cstddef>
#include <initializer_list>

class ScriptedDraws {
 public:
  ScriptedDraws(std::initializer_list<int> draws);
  ScriptedDraws(const ScriptedDraws &) = delete;
  ScriptedDraws &operator=(const ScriptedDraws &) = delete;
  ~ScriptedDraws();

  // How many draws have been taken, those beyond the end of the script included (they are 0).
  std::size_t taken() const;
};

// Draws that come out as 0, 1/4, 1/2, 3/4 and 1.
inline constexpr int kDrawZero = 0;
inline constexpr int kDrawQuarter = 536870912;
inline constexpr int kDrawHalf = 1073741824;
inline constexpr int kDrawThreeQuarters = 1610612736;
inline constexpr int kDrawOne = 2147483647;
