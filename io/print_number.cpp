// SPDX-License-Identifier: GPL-3.0-or-later
// Six significant digits: a value that "%g" prints without an exponent is scaled by a power of ten
// to an integer of six digits. The power is exact in a double, so only the one multiplication
// rounds; where its error could decide how the last digit is rounded, a fused multiply-add gives
// the error itself. All other values go to the library. Three decimals are made in the same way.
#include "io/print_number.h"

#include "io/parse_number.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <string_view>

namespace polyfab {
namespace {

constexpr double minFixed = 1e-4;   // from here on "%g" needs no exponent,
constexpr double maxFixed = 999999; // up to here no rounding leads to one

// Powers of ten from 10^lowest on, and the factors that scale each decade to [1e5, 1e6).
constexpr int lowest = -5;
constexpr std::array<double, 12> decade = {1e-5, 1e-4, 1e-3, 1e-2, 1e-1, 1,
                                           1e1,  1e2,  1e3,  1e4,  1e5,  1e6};
constexpr std::array<double, 11> scale = {1e10, 1e9, 1e8, 1e7, 1e6, 1e5, 1e4, 1e3, 1e2, 1e1, 1};

constexpr auto pairs = [] {
    std::array<char, 200> text{};
    for (unsigned i = 0; i < 100; ++i) {
        text[2 * i] = static_cast<char>('0' + i / 10);
        text[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return text;
}();

void printPair(char* out, unsigned value) { std::memcpy(out, &pairs[2 * value], 2); }

/// Index of the decade of a value in [minFixed, maxFixed); its binary exponent leaves two to choose
/// from. Next to a limit that is no exact double either one will do: both round to the same digits.
unsigned decadeOf(double size) {
    const int binary = static_cast<int>(std::bit_cast<std::uint64_t>(size) >> 52) - 1023;
    const auto lower = static_cast<unsigned>((binary * 1233 >> 12) - lowest); // log10(2), nearly
    return lower + (size >= decade[lower + 1]);
}

char* printPadded(char* out, std::string_view text, int width) {
    for (auto i = text.size(); i < static_cast<std::size_t>(width); ++i) *out++ = ' ';
    return std::copy(text.begin(), text.end(), out);
}

/// number / 10^5 * 10^exponent, with number in [1e5, 1e6).
struct Decimal {
    unsigned number;
    int exponent;
};

/// Rounds a value in [minFixed, maxFixed) to six significant digits, ties to even.
Decimal roundToSixDigits(double size) {
    const unsigned index = decadeOf(size);
    const double scaled = size * scale[index];
    auto number = static_cast<unsigned>(scaled);
    double aboveHalf = scaled - number - 0.5;
    // The multiplication errs by 6e-11 at most. The sum has the sign of the exact value.
    if (std::fabs(aboveHalf) < 1e-9) aboveHalf += std::fma(size, scale[index], -scaled);
    number += aboveHalf > 0 || (aboveHalf == 0 && number % 2 != 0);
    const int exponent = static_cast<int>(index) + lowest;
    return number < 1000000 ? Decimal{number, exponent} : Decimal{100000, exponent + 1};
}

char* printFixed(char* out, bool negative, Decimal decimal, int width) {
    char digits[16] = {};
    printPair(digits, decimal.number / 10000);
    printPair(digits + 2, decimal.number / 100 % 100);
    printPair(digits + 4, decimal.number % 100);
    int significant = 6;
    while (digits[significant - 1] == '0') --significant;

    const int whole = decimal.exponent + 1; // digits in front of the point
    int length = whole;
    if (whole <= 0) length = 2 - whole + significant;
    if (whole > 0 && significant > whole) length = significant + 1;
    length += negative;

    // Copies of a fixed size are single moves; what they leave behind the end does not matter.
    std::memcpy(out, "        ", 8);
    if (length < width) out += width - length;
    char* const end = out + length;
    *out = '-';
    out += negative;
    if (whole <= 0) {
        std::memcpy(out, "0.000000", 8);
        std::memcpy(out + 2 - whole, digits, 8);
    } else {
        std::memcpy(out, digits, 8);
        out[whole] = '.';
        std::memcpy(out + whole + 1, digits + whole, 8);
    }
    return end;
}

} // namespace

char* printG6(char* out, double value, int width) {
    const double size = std::fabs(value);
    if (size >= minFixed && size < maxFixed) {
        return printFixed(out, value < 0, roundToSixDigits(size), width);
    }
    if (size == 0) {
        return std::signbit(value) ? printPadded(out, "-0", width) : printPadded(out, "0", width);
    }
    char text[numberRoom];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 6);
    return printPadded(out, {text, end.ptr}, width);
}

bool hasSixDigits(double value) {
    const double size = std::fabs(value);
    if (size >= minFixed && size < maxFixed) {
        const Decimal decimal = roundToSixDigits(size);
        // Over an exact power of ten an integer is rounded as a reader does it.
        return decimal.number / scale[static_cast<unsigned>(decimal.exponent - lowest)] == size;
    }
    if (size == 0) return true;
    char text[numberRoom];
    *std::to_chars(text, text + sizeof text, value, std::chars_format::general, 6).ptr = '\0';
    const char* begin = text;
    double read = 0;
    return parseDecimal(begin, read) && read == value;
}

char* printF3(char* out, double value) {
    constexpr int width = 5; // which only words such as "inf" fall short of
    const double size = std::fabs(value);
    if (!(size < 1e9)) {
        char text[decimalRoom];
        const auto end =
            std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 3);
        return printPadded(out, {text, end.ptr}, width);
    }
    const double scaled = size * 1000;
    auto number = static_cast<std::uint64_t>(scaled);
    double aboveHalf = scaled - static_cast<double>(number) - 0.5;
    // The multiplication errs by 6.1e-5 at most. The sum has the sign of the exact value.
    if (std::fabs(aboveHalf) < 1e-4) aboveHalf += std::fma(size, 1000, -scaled);
    number += aboveHalf > 0 || (aboveHalf == 0 && number % 2 != 0);
    *out = '-';
    out += std::signbit(value);
    out = std::to_chars(out, out + numberRoom, number / 1000).ptr;
    const auto decimals = static_cast<unsigned>(number % 1000);
    *out = '.';
    out[1] = static_cast<char>('0' + decimals / 100);
    printPair(out + 2, decimals % 100);
    return out + 4;
}

char* printExact(char* out, double value) {
    return std::to_chars(out, out + numberRoom, value).ptr;
}

char* printInteger(char* out, std::int64_t value) {
    return std::to_chars(out, out + numberRoom, value).ptr;
}

} // namespace polyfab
