// SPDX-License-Identifier: GPL-3.0-or-later
// The numbers that the inline paths leave over: many digits, large exponents.
#include "io/parse_number.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <optional>

namespace polyfab::parsing {
namespace {

__extension__ using Wide = unsigned __int128;

/// 1 / 10^k, rounded down: `top` with its highest bit set, times two to the `power`.
struct Reciprocal {
    std::uint64_t top;
    int power;
};

constexpr int mostPlaces = 27; ///< 5^27 is the last power of five that 64 bits hold

constexpr auto reciprocals = [] {
    std::array<Reciprocal, mostPlaces + 1> table{};
    std::uint64_t five = 1;
    for (int k = 1; k <= mostPlaces; ++k) {
        five *= 5;
        const int power = 127 - std::countl_zero(five);
        table[static_cast<std::size_t>(k)] = {static_cast<std::uint64_t>((Wide{1} << power) / five),
                                              -power - k};
    }
    return table;
}();

/// For exponents of ordinary doubles, where std::ldexp takes a fifth of the time for a number.
double powerOfTwo(int exponent) {
    return std::bit_cast<double>(static_cast<std::uint64_t>(exponent + 1023) << 52);
}

/// The nearest double to mantissa / 10^places, or nothing when that is too near to the middle
/// between two doubles: only the upper 63 bits of the product with the reciprocal are looked at,
/// and the true one is less than 2 above. Where both bounds round alike, so does all between them.
std::optional<double> divided(std::uint64_t mantissa, int places) {
    const Reciprocal& by = reciprocals[static_cast<std::size_t>(places)];
    const int lead = std::countl_zero(mantissa);
    const auto product = static_cast<std::int64_t>(Wide{mantissa << lead} * by.top >> 65);
    const auto value = static_cast<double>(product);
    if (value != static_cast<double>(product + 2)) return std::nullopt;
    return value * powerOfTwo(65 - lead + by.power);
}

/// Whether the mantissa is what all digits make.
bool isExact(const Decimal& number) {
    std::int64_t digits = number.digits;
    for (const char* p = number.begin; digits > 19 && (*p == '0' || *p == '.'); ++p) {
        if (*p == '0') --digits;
    }
    return digits <= 19;
}

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

double longDecimal(const Decimal& number) {
    const auto [begin, end, mantissa, digits, exponent] = number;
    if (exponent < 0 && exponent >= -mostPlaces && mantissa != 0 && isExact(number)) {
        if (const auto value = divided(mantissa, static_cast<int>(-exponent))) return *value;
    }
    double value = 0;
    if (std::from_chars(begin, end, value).ec != std::errc::result_out_of_range) return value;
    return tooLarge(begin, end) ? HUGE_VAL : 0.0;
}

} // namespace polyfab::parsing
