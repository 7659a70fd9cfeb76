// SPDX-License-Identifier: GPL-3.0-or-later
// The numbers that the inline paths leave over: many digits, large exponents.
#include "io/parse_number.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace polyfab::parsing {
namespace {

/// Whether a number that no double is near is too large rather than too small: the decimal place of
/// its first digit other than 0 tells.
bool tooLarge(const char* begin, const char* end) {
    std::int64_t place = 0;
    bool significant = false;
    bool fraction = false;
    const char* p = begin;
    for (; p != end && (*p | 0x20) != 'e'; ++p) {
        if (*p == '.') {
            fraction = true;
            continue;
        }
        significant = significant || *p != '0';
        if (significant && !fraction) ++place;
        if (!significant && fraction) --place;
    }
    std::int64_t exponent = 0;
    if (p != end) parseInteger(++p, exponent);
    return place + exponent > 0;
}

} // namespace

std::uint64_t longInteger(const char* begin, const char* end) {
    constexpr auto most = static_cast<std::uint64_t>(maxParsedInteger);
    std::uint64_t value = 0;
    for (; begin != end; ++begin) {
        value = std::min(most, value * 10 + static_cast<std::uint64_t>(*begin - '0'));
    }
    return value;
}

double longDecimal(const char* begin, const char* end) {
    double value = 0;
    if (std::from_chars(begin, end, value).ec != std::errc::result_out_of_range) return value;
    return tooLarge(begin, end) ? HUGE_VAL : 0.0;
}

} // namespace polyfab::parsing
