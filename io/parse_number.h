// SPDX-License-Identifier: GPL-3.0-or-later
// Numbers from text, whatever the locale. Inline, because a mesh file is mostly numbers.
//
// The text has to be followed by a character that belongs to no number (a blank, a line end, NUL):
// that is where reading stops.
#pragma once

#include <cstdint>

namespace polyfab {

/// Integers beyond this magnitude become it, so that the sum of two never overflows.
inline constexpr std::int64_t maxParsedInteger = 1'000'000'000'000'000'000;

namespace parsing {

/// Powers of ten that a double holds exactly.
inline constexpr double powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                    1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                    1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
inline constexpr std::int64_t maxPower = 22;
inline constexpr std::uint64_t maxExact = std::uint64_t{1} << 53;

[[nodiscard]] inline bool isDigit(char c) { return static_cast<unsigned char>(c - '0') < 10; }

/// Appends the digits at `p` to `value`, which wraps after 19 of them.
inline const char* digits(const char* p, std::uint64_t& value) {
    for (; isDigit(*p); ++p) value = value * 10 + static_cast<std::uint64_t>(*p - '0');
    return p;
}

/// The value of an unsigned run of digits of any length, at most maxParsedInteger.
[[nodiscard]] std::uint64_t longInteger(const char* begin, const char* end);

/// An unsigned decimal number of any length: `mantissa` times ten to the `exponent`.
struct Decimal {
    const char* begin;
    const char* end;
    std::uint64_t mantissa; ///< wraps after 19 digits that count
    std::int64_t digits;    ///< zeros in front included
    std::int64_t exponent;
};

/// The nearest double; HUGE_VAL beyond the range.
[[nodiscard]] double longDecimal(const Decimal& number);

} // namespace parsing

/// Reads a decimal integer with an optional sign and moves `text` behind it. When there is none:
/// false, `value` 0 and `text` unmoved.
inline bool parseInteger(const char*& text, std::int64_t& value) {
    const bool negative = *text == '-';
    const char* const begin = text + (negative || *text == '+');
    std::uint64_t magnitude = 0;
    const char* const end = parsing::digits(begin, magnitude);
    if (end - begin > 18) magnitude = parsing::longInteger(begin, end);
    value = static_cast<std::int64_t>(magnitude);
    if (negative) value = -value;
    if (end == begin) return false;
    text = end;
    return true;
}

/// Reads the longest decimal number at `text` (sign, digits with a point, exponent; only a digit is
/// indispensable), correctly rounded, and moves `text` behind it. Words such as "inf" are no
/// numbers, and of "0x1" only the 0 is one. When there is none: false, `value` 0, `text` unmoved.
inline bool parseDecimal(const char*& text, double& value) {
    value = 0;
    const bool negative = *text == '-';
    const char* const begin = text + (negative || *text == '+');
    std::uint64_t mantissa = 0;
    const char* p = parsing::digits(begin, mantissa);
    std::int64_t digits = p - begin;
    std::int64_t exponent = 0;
    if (*p == '.') {
        const char* const fraction = p + 1;
        p = parsing::digits(fraction, mantissa);
        exponent = fraction - p;
        digits -= exponent;
    }
    if (digits == 0) return false;
    if ((*p | 0x20) == 'e') {
        const char* power = p + 1;
        std::int64_t given = 0;
        if (parseInteger(power, given)) {
            p = power;
            exponent += given;
        }
    }
    // An exact integer times or over an exact power of ten is rounded once, hence correctly.
    if (digits <= 19 && mantissa <= parsing::maxExact && exponent >= -parsing::maxPower
        && exponent <= parsing::maxPower) {
        value = static_cast<double>(mantissa);
        if (exponent < 0) {
            value /= parsing::powers[-exponent];
        } else {
            value *= parsing::powers[exponent];
        }
    } else {
        value = parsing::longDecimal({begin, p, mantissa, digits, exponent});
    }
    if (negative) value = -value;
    text = p;
    return true;
}

} // namespace polyfab
