// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/store.h"

#include "mesh/large_block.h"
#include "tests/support/fake_platform.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace polyfab {
namespace {

using test::FakePlatform;
using Log = std::vector<std::string>;

constexpr std::size_t impossible = SIZE_MAX / 4;

TEST(Store, FreeNullsThePointerAndStrangersAreRejected) {
    FakePlatform shown;
    const int before = storeBlocks();
    void* block = farmalloc(10);
    void* stale = block;
    EXPECT_EQ(storeBlocks(), before + 1);
    farfree(&block);
    EXPECT_EQ(block, nullptr);
    farfree(&block);
    EXPECT_TRUE(shown.log.empty());
    farfree(&stale);
    int stranger = 5;
    EXPECT_EQ(farrealloc(&stranger, 77, "q"), nullptr);
    EXPECT_EQ(stranger, 5);
    ASSERT_EQ(shown.log.size(), 2U);
    EXPECT_TRUE(shown.log[0].starts_with("message!|nFMC="));
    EXPECT_TRUE(shown.log[0].ends_with("|you tried to free memory which had not been allocated"));
    EXPECT_NE(shown.log[1].find(", n=77|you tried to realloc memory"), std::string::npos);
    EXPECT_EQ(storeBlocks(), before);
}

TEST(Store, OutOfMemoryIsReportedUnderTheLabelAndForgetsTheBlock) {
    FakePlatform shown;
    const int before = storeBlocks();
    EXPECT_EQ(farmalloc(impossible), nullptr);
    EXPECT_EQ(farrealloc(farmalloc(8), impossible, "point"), nullptr);
    EXPECT_EQ(farrealloc(farmalloc(8), impossible, nullptr), nullptr);
    const Log expected = {"message!|farmalloc|I can't get enough memory",
                          "message!|point|I can't get enough memory",
                          "message!|an array|I can't get enough memory"};
    EXPECT_EQ(shown.log, expected);
    EXPECT_EQ(storeBlocks(), before);
}

TEST(Store, ContentsSurviveEveryKindOfResize) {
    FakePlatform shown;
    // Small and large sizes, so that every change between the two kinds of memory happens.
    const std::size_t sizes[] = {100, 5 << 20, 9 << 20, 300, 64 << 20, 4 << 20, 4096, 12 << 20, 50};
    unsigned char* block = static_cast<unsigned char*>(farmalloc(50));
    for (int i = 0; i < 50; ++i) block[i] = static_cast<unsigned char>(i * 5);
    for (const std::size_t size : sizes) {
        block = static_cast<unsigned char*>(farrealloc(block, size, "test"));
        ASSERT_NE(block, nullptr);
        for (int i = 0; i < 50; ++i) ASSERT_EQ(block[i], static_cast<unsigned char>(i * 5));
        block[size - 1] = block[49]; // the last byte is ours
    }
    EXPECT_EQ(farrealloc(block, 0, "test"), nullptr);
    EXPECT_TRUE(shown.log.empty());
}

TEST(Store, ManyBlocksInRandomOrder) {
    FakePlatform shown;
    const int before = storeBlocks();
    std::mt19937 random(1);
    std::vector<int*> blocks;
    for (int i = 0; i < 200'000; ++i) {
        blocks.push_back(static_cast<int*>(farmalloc(8)));
        *blocks.back() = i;
        std::swap(blocks[random() % blocks.size()], blocks.back());
        if (i % 3 != 0) continue;
        farfree(&blocks.back()); // holes for the compactions to close
        blocks.pop_back();
    }
    EXPECT_EQ(storeBlocks(), before + static_cast<int>(blocks.size()));
    for (int*& block : blocks) {
        const int value = *block;
        block = static_cast<int*>(farrealloc(block, 64, nullptr));
        ASSERT_EQ(*block, value);
        farfree(&block);
    }
    EXPECT_EQ(storeBlocks(), before);
    EXPECT_TRUE(shown.log.empty());
}

TEST(Store, AFullTableSaysSoTwiceAndWorksAgainAfterARelease) {
    FakePlatform shown;
    std::vector<void*> blocks;
    while (storeBlocks() < storeTableSize) {
        blocks.push_back(farmalloc(1));
        ASSERT_TRUE(shown.log.empty());
    }
    EXPECT_EQ(farmalloc(1), nullptr);
    const Log expected = {"message!|farmalloc|too many store allocations at once",
                          "message!|farmalloc|I can't get enough memory"};
    EXPECT_EQ(shown.log, expected);
    farfree(&blocks.front()); // the next allocation compacts the table and finds the slot
    blocks.front() = farmalloc(1);
    EXPECT_NE(blocks.front(), nullptr);
    for (void*& block : blocks) farfree(&block);
}

} // namespace
} // namespace polyfab
