// What the program says of itself. The date is that of the release, not of the compilation, so that
// two builds of one release write the same bytes.
#pragma once

inline constexpr const char *kNameLine = "\nKorvo (2.1.3, Nov 21 2026, 12:00:00)\n";

// The banner shows all four lines, the usage text the last three.
inline constexpr const char *kAuthorshipLine = "A score generator for algorithmic composition\n";
inline constexpr const char *kCreditLines =
    "Written by the Korvo developers\n"
    "Copyright 2026, MIT license\n"
    "Manual: docs/manual.md\n"
    "\n";
