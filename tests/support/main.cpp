// SPDX-License-Identifier: GPL-3.0-or-later
// Runs the tests in shuffled order (the seed is printed), so that nothing leaks from one to the
// next unnoticed.
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    GTEST_FLAG_SET(shuffle, true);
    return RUN_ALL_TESTS();
}
