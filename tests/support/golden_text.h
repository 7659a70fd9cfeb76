// SPDX-License-Identifier: GPL-3.0-or-later
// Texts against those in tests/golden. scripts/golden.sh makes them anew; look at each line that
// changed before it is kept.
#pragma once

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace polyfab::test {

/// Shows the first line that is another, under its heading: a line that begins with no blank.
inline void expectGoldenText(const std::string& name, const std::string& text) {
    const std::string path = POLYFAB_GOLDEN "/" + name;
    if (std::getenv("POLYFAB_REFRESH_GOLDEN") != nullptr) std::ofstream(path) << text;
    std::ifstream file(path);
    std::istringstream lines(text);
    std::string expected, line, heading;
    for (int number = 1; std::getline(lines, line); ++number) {
        if (line[0] != ' ') heading = line;
        std::getline(file, expected);
        ASSERT_EQ(line, expected) << name << ", line " << number << ", " << heading;
    }
    EXPECT_FALSE(std::getline(file, expected)) << expected;
}

} // namespace polyfab::test
