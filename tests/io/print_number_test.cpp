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

std::string printed(double value, int width) {
    char text[numberRoom];
    return {text, printG6(text, value, width)};
}

std::string expected(double value, int width) {
    char text[numberRoom];
    const int length = std::snprintf(text, sizeof text, width == 0 ? "%g" : "%6g", value);
    return {text, static_cast<std::size_t>(length)};
}

void check(double value) {
    for (const double signedValue : {value, -value}) {
        for (const int width : {0, 6}) {
            ASSERT_EQ(printed(signedValue, width), expected(signedValue, width))
                << std::hexfloat << signedValue;
        }
    }
}

void checkWithNeighbours(double value) {
    const double infinity = std::numeric_limits<double>::infinity();
    check(value);
    check(std::nextafter(value, infinity));
    check(std::nextafter(value, 0));
}

TEST(PrintNumber, RealEdges) {
    using Limits = std::numeric_limits<double>;
    for (const double value : {0.0, 0.5, 1234567.0, 999999.5, 99999.95, 0.9999995, 0.00009999995,
                               Limits::denorm_min(), Limits::min(), Limits::max()}) {
        checkWithNeighbours(value);
    }
    check(Limits::infinity());
    check(Limits::quiet_NaN());
    for (int exponent = -8; exponent <= 8; ++exponent) {
        checkWithNeighbours(std::pow(10, exponent));
        checkWithNeighbours(std::ldexp(1, exponent * 3));
    }
}

TEST(PrintNumber, RealRandom) {
    std::mt19937_64 random(20240229);
    for (int i = 0; i < 100000; ++i) {
        check(std::bit_cast<double>(random()));
        // Binary exponents about those that are printed without an exponent.
        check(
            std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 48) - 78));
        // What files hold: decimals of up to nine digits.
        const double digits = static_cast<double>(random() % 1000000000);
        check(digits / std::pow(10, static_cast<double>(random() % 13)));
    }
}

// A value half-way between two results is where a scaled double errs: exact ties (few decimals) go
// to even, near ones (many decimals) by the exact value of the double.
TEST(PrintNumber, RealTies) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 50000; ++i) {
        const double half = static_cast<double>(100000 + random() % 900000) + 0.5;
        checkWithNeighbours(half / std::pow(10, static_cast<double>(random() % 11)));
    }
}

TEST(PrintNumber, Integers) {
    std::mt19937_64 random(1);
    const auto checkInteger = [](std::int64_t value) {
        char text[numberRoom];
        ASSERT_EQ(std::string(text, printInteger(text, value)), std::to_string(value));
    };
    checkInteger(std::numeric_limits<std::int64_t>::min());
    checkInteger(std::numeric_limits<std::int64_t>::max());
    for (std::int64_t power = 1; power < 1000000000000; power *= 10) {
        for (const std::int64_t value : {power - 1, power, -power, 1 - power}) checkInteger(value);
    }
    for (int i = 0; i < 1000; ++i) {
        checkInteger(static_cast<std::int64_t>(random()) >> random() % 64);
    }
}

} // namespace
} // namespace polyfab
