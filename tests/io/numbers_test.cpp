// SPDX-License-Identifier: GPL-3.0-or-later
// The C library in the "C" locale, where a program starts, is the measure: of decimals the same
// double to the bit, of doubles the same bytes.
#include "io/parse_number.h"
#include "io/print_number.h"

#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <sstream>
#include <string>

namespace polyfab {
namespace {

/// Equal in every bit, so that zeros of either sign differ.
void expectAsLibrary(const std::string& text) {
    char* end = nullptr;
    const double expected = std::strtod(text.c_str(), &end);
    const char* stop = text.c_str();
    double value = 1;
    EXPECT_EQ(parseDecimal(stop, value), end != text.c_str()) << text;
    EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(expected)) << text;
    EXPECT_EQ(stop, text.c_str() + (end - text.c_str())) << text;
}

TEST(ParseNumber, DecimalsAreReadAsTheLibraryReadsThem) {
    std::istringstream texts(
        "0 -0 +1.5 -.5 5. . - +-1 --1 abc e5 .e5 1.2.3 1,5 1e 1e+ 1e-x 1E5 2e+03 1e22 1e23 1e-23 "
        "9007199254740993 9007199254740992e22 123456789012345678901234567890 1.8e308 -1e400 "
        "1.7976931348623159e308 0e99999 -1e99999999999999999999 4.9e-324 2e-324 1e-400 "
        "-1e-99999999999999999999");
    for (std::string text; texts >> text;) expectAsLibrary(text);
    const std::string zeros(400, '0');
    for (const std::string& text :
         {std::string(), "0." + zeros + "1e401", "0." + zeros + "1e50", "1" + zeros + "e-400"}) {
        expectAsLibrary(text);
    }
    std::mt19937_64 random(testing::UnitTest::GetInstance()->random_seed());
    char text[64];
    for (int i = 0; i < 50'000; ++i) {
        const double any = std::bit_cast<double>(random());
        if (!std::isfinite(any)) continue;
        std::snprintf(text, sizeof text, "%.*g", static_cast<int>(random() % 20), any);
        expectAsLibrary(text);
        std::snprintf(text, sizeof text, "%llu.%llue%d",
                      static_cast<unsigned long long>(random() >> random() % 64),
                      static_cast<unsigned long long>(random() >> random() % 64),
                      static_cast<int>(random() % 80) - 40);
        expectAsLibrary(text);
    }
}

/// Of texts parted by "|", how many characters are read, and as what.
template <typename Value>
std::string readings(bool (*parse)(const char*&, Value&), const std::string& parted) {
    std::istringstream texts(parted);
    std::ostringstream told;
    for (std::string text; std::getline(texts, text, '|');) {
        const char* stop = text.c_str();
        Value value = 1;
        const bool isRead = parse(stop, value);
        EXPECT_EQ(isRead, stop != text.c_str()) << text;
        told << stop - text.c_str() << ':' << value << ' ';
    }
    return told.str();
}

TEST(ParseNumber, WordsAndHexadecimalAreNoDecimalsAndIntegersStopAtTheirLimit) {
    EXPECT_EQ(readings<double>(parseDecimal, "inf|-nan|0x1p4| 1"), "0:0 0:0 1:0 0:0 ");
    const std::string most = std::to_string(maxParsedInteger);
    EXPECT_EQ(readings<std::int64_t>(parseInteger,
                                     "12/3|-7|+7.5|-|+-1|4294967297|-99999999999999999999999|"
                                     "18446744073709551617|0000000000000000000000042"),
              "2:12 2:-7 2:7 0:0 0:0 10:4294967297 24:-" + most + " 20:" + most + " 25:42 ");
}

/// The value, its neighbours, and all of them with the other sign.
void check(double value) {
    for (const double near : {value, std::nextafter(value, INFINITY), std::nextafter(value, 0)}) {
        for (const double number : {near, -near}) {
            char text[decimalRoom + numberRoom], expected[decimalRoom + numberRoom];
            for (const int width : {0, 6}) {
                *printG6(text, number, width) = 0;
                std::snprintf(expected, sizeof expected, "%*g", width, number);
                ASSERT_STREQ(text, expected) << std::hexfloat << number;
            }
            const bool sixDigits = std::strtod(expected, nullptr) == number;
            std::snprintf(expected, sizeof expected, "%5.3f", number);
            ASSERT_EQ(std::string(text, printF3(text, number)), expected) << number;
            if (!std::isfinite(number)) continue;
            ASSERT_EQ(hasSixDigits(number), sixDigits) << expected;
            *printExact(text, number) = 0;
            const char* exact = text;
            double back = 0;
            ASSERT_TRUE(parseDecimal(exact, back) && *exact == 0) << text;
            ASSERT_EQ(std::bit_cast<std::uint64_t>(back), std::bit_cast<std::uint64_t>(number));
        }
    }
}

TEST(PrintNumber, EveryDoubleAsPrintfDoes) {
    using Limits = std::numeric_limits<double>;
    for (const double value : {0.0, 999999.5, 99999.95, 0.9999995, 0.00009999995, 1e9,
                               999999999.9995, 1e250, Limits::denorm_min(), Limits::min(),
                               Limits::max(), Limits::infinity(), Limits::quiet_NaN()}) {
        check(value);
    }
    for (int exponent = -8; exponent <= 8; ++exponent) check(std::pow(10, exponent));
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
        // With three decimals exact ties are odd multiples of 1/16.
        check(static_cast<double>(random() % (1ULL << 34)) / 16);
        check((static_cast<double>(random() >> (24 + random() % 40)) + 0.5) / 1000);
    }
}

} // namespace
} // namespace polyfab
