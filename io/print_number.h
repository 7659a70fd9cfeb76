// SPDX-License-Identifier: GPL-3.0-or-later
// Numbers as text, the same in every locale.
#pragma once

#include <cstdint>

namespace polyfab {

/// Bytes that one number may use up behind `out`, all of which may be overwritten.
inline constexpr int numberRoom = 40;

/// Prints what "%g" (`width` 0) or "%6g" (`width` 6) prints in the C locale: six significant
/// digits, padded on the left with blanks, ties of the exact value to even. Gives the end of the
/// text; no NUL is written.
char* printG6(char* out, double value, int width);

/// Whether what printG6 prints reads back to the same double.
[[nodiscard]] bool hasSixDigits(double value);

/// Prints the shortest text that reads back to the same double. Gives the end of the text; no NUL
/// is written.
char* printExact(char* out, double value);

/// As numberRoom, for printF3.
inline constexpr int decimalRoom = 320;

/// Prints what "%5.3f" prints in the C locale: three decimals, ties of the exact value to even.
/// Gives the end of the text; no NUL is written.
char* printF3(char* out, double value);

/// Prints what "%lld" prints. Gives the end of the text; no NUL is written.
char* printInteger(char* out, std::int64_t value);

} // namespace polyfab
