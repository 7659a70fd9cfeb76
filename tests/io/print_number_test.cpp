// SPDX-License-Identifier: GPL-3.0-or-later
// printf in the C locale is the measure: every double must give the same bytes.
#include "io/print_number.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

namespace polyfab {
namespace {

/// The value, its neighbours, and all of them with the other sign.
void check(double value) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double near : {value, std::nextafter(value, infinity), std::nextafter(value, 0)}) {
        for (const double signedValue : {near, -near}) {
            char text[numberRoom], expected[numberRoom];
            *printG6(text, signedValue, 0) = 0;
            std::snprintf(expected, sizeof expected, "%g", signedValue);
            ASSERT_STREQ(text, expected) << std::hexfloat << signedValue;
            *printG6(text, signedValue, 6) = 0;
            std::snprintf(expected, sizeof expected, "%6g", signedValue);
            ASSERT_STREQ(text, expected) << std::hexfloat << signedValue;
        }
    }
}

TEST(PrintNumber, RealEdges) {
    using Limits = std::numeric_limits<double>;
    for (const double value :
         {0.0, 0.5, 1234567.0, 999999.5, 99999.95, 0.9999995, 0.00009999995, Limits::denorm_min(),
          Limits::min(), Limits::max(), Limits::infinity(), Limits::quiet_NaN()}) {
        check(value);
    }
    for (int exponent = -8; exponent <= 8; ++exponent) {
        check(std::pow(10, exponent));
        check(std::ldexp(1, exponent * 3));
    }
}

TEST(PrintNumber, RealRandom) {
    std::mt19937_64 random(20240229);
    for (int i = 0; i < 40000; ++i) {
        check(std::bit_cast<double>(random()));
        // Binary exponents about those that are printed without an exponent.
        const auto mantissa = static_cast<double>(random() >> 11);
        check(std::ldexp(mantissa, static_cast<int>(random() % 48) - 78));
        // What files hold: decimals of up to nine digits.
        const auto digits = static_cast<double>(random() % 1000000000);
        check(digits / std::pow(10, static_cast<double>(random() % 13)));
        // A value half-way between two results is where a scaled double errs: exact ties (few
        // decimals) go to even, near ones (many decimals) by the exact value of the double.
        const double half = static_cast<double>(100000 + random() % 900000) + 0.5;
        check(half / std::pow(10, static_cast<double>(random() % 11)));
    }
}

TEST(PrintNumber, ThreeDecimals) {
    const auto checkDecimals = [](double value) {
        for (const double signedValue : {value, -value}) {
            char text[decimalRoom], wanted[decimalRoom + 1];
            std::snprintf(wanted, sizeof wanted, "%5.3f", signedValue);
            ASSERT_EQ(std::string(text, printF3(text, signedValue)), wanted)
                << std::hexfloat << signedValue;
        }
    };
    using Limits = std::numeric_limits<double>;
    for (const double value : {0.0, 1e9, 999999999.9995, 999999999.99949999, 1e250, Limits::max(),
                               Limits::min(), Limits::infinity(), Limits::quiet_NaN()}) {
        checkDecimals(value);
        checkDecimals(std::nextafter(value, 0));
    }
    std::mt19937_64 random(3);
    for (int i = 0; i < 100000; ++i) {
        checkDecimals(std::bit_cast<double>(random()));
        checkDecimals(
            std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 48) - 68));
        // Exact ties are odd multiples of 1/16; other halves of a thousandth lie next to one.
        checkDecimals(static_cast<double>(random() % (1ULL << 34)) / 16);
        const double half = (static_cast<double>(random() >> (24 + random() % 40)) + 0.5) / 1000;
        checkDecimals(half);
        checkDecimals(std::nextafter(half, 0));
        checkDecimals(std::nextafter(half, Limits::max()));
    }
}

} // namespace
} // namespace polyfab
