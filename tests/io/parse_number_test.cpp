// SPDX-License-Identifier: GPL-3.0-or-later
// The C library in the "C" locale, where a program starts, is the measure for decimals.
#include "io/parse_number.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
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
    EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(expected))
        << text << " read as " << value;
    EXPECT_EQ(stop - text.c_str(), end - text.c_str()) << text;
}

TEST(ParseNumber, DecimalsAreReadAsTheLibraryReadsThem) {
    std::istringstream texts(
        "0 -0 +1.5 -.5 5. . - +-1 --1 abc e5 .e5 1.2.3 1,5 1e 1e+ 1e-x 1E5 2e+03 0.1 0.3 "
        "1e22 1e23 1e-22 1e-23 9007199254740993 9007199254740992e22 123456789012345678901234567890 "
        "1e308 1.8e308 -1.8e308 1.7976931348623157e308 1.7976931348623159e308 1e400 0e99999 "
        "-1e99999999999999999999 4.9e-324 2e-324 2.2250738585072011e-308 1e-400 "
        "-1e-99999999999999999999");
    for (std::string text; texts >> text;) expectAsLibrary(text);
    const std::string zeros(400, '0');
    for (const std::string& text :
         {std::string(), "0." + zeros + "1", "1" + zeros, "0." + zeros + "1e401",
          "1" + zeros + "e-400", "0" + zeros + ".25"}) {
        expectAsLibrary(text);
    }
}

TEST(ParseNumber, RandomDecimalsAreReadAsTheLibraryReadsThem) {
    std::mt19937_64 random(testing::UnitTest::GetInstance()->random_seed());
    char text[64];
    for (int i = 0; i < 50'000; ++i) {
        const double any = std::bit_cast<double>(random());
        if (!std::isfinite(any)) continue;
        std::snprintf(text, sizeof text, "%.*g", static_cast<int>(random() % 20), any);
        expectAsLibrary(text);
        std::snprintf(text, sizeof text, "%.*f", static_cast<int>(random() % 12),
                      static_cast<double>(random() % 2'000'000) / 977);
        expectAsLibrary(text);
        std::snprintf(text, sizeof text, "%llu.%llue%d",
                      static_cast<unsigned long long>(random() >> random() % 64),
                      static_cast<unsigned long long>(random() >> random() % 64),
                      static_cast<int>(random() % 80) - 40);
        expectAsLibrary(text);
    }
}

template <typename Value>
struct Row {
    const char* text;
    int used;
    Value value;
};

template <typename Value, std::size_t count>
void expectRows(bool (*parse)(const char*&, Value&), const Row<Value> (&rows)[count]) {
    for (const Row<Value>& row : rows) {
        const char* stop = row.text;
        Value value = 1;
        EXPECT_EQ(parse(stop, value), row.used > 0) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
        EXPECT_EQ(stop - row.text, row.used) << row.text;
    }
}

TEST(ParseNumber, WordsAndHexadecimalAreNoDecimals) {
    expectRows<double>(parseDecimal, {{"inf", 0, 0},
                                      {"-nan", 0, 0},
                                      {"infinity", 0, 0},
                                      {"0x1p4", 1, 0},
                                      {"-0X10", 2, -0.0},
                                      {" 1", 0, 0}});
}

TEST(ParseNumber, Integers) {
    expectRows<std::int64_t>(parseInteger, {{"12/3", 2, 12},
                                            {"-7", 2, -7},
                                            {"+7.5", 2, 7},
                                            {"0x9", 1, 0},
                                            {"", 0, 0},
                                            {"-", 0, 0},
                                            {"+-1", 0, 0},
                                            {"x1", 0, 0},
                                            {"4294967297", 10, 4294967297},
                                            {"999999999999999999", 18, 999999999999999999},
                                            {"-99999999999999999999999", 24, -maxParsedInteger},
                                            {"9999999999999999999", 19, maxParsedInteger},
                                            {"18446744073709551617", 20, maxParsedInteger},
                                            {"0000000000000000000000042", 25, 42}});
}

} // namespace
} // namespace polyfab
