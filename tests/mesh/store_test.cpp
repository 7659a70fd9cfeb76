// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/large_block.h"
#include "mesh/stale.h"
#include "mesh/store.h"

#include "tests/support/fake_platform.h"

#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <random>
#include <sys/resource.h>

namespace polyfab {
namespace {

constexpr std::size_t impossible = SIZE_MAX / 4;

class Store : public testing::Test {
  protected:
    ~Store() override { EXPECT_EQ(storeBlocks(), before); }

    test::FakePlatform shown;
    const int before = storeBlocks();
};

TEST_F(Store, StrangersAndTooMuchAreReported) {
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
    EXPECT_EQ(farmalloc(impossible), nullptr);
    EXPECT_EQ(farrealloc(farmalloc(8), impossible, "point"), nullptr);
    EXPECT_EQ(farrealloc(farmalloc(8), impossible, nullptr), nullptr);
    for (std::string& line : shown.log) line.erase(0, line.find_first_of("|,", 9) + 1);
    EXPECT_EQ(shown.log, (std::vector<std::string>{
                             "you tried to free memory which had not been allocated",
                             " n=77|you tried to realloc memory which had not been allocated",
                             "I can't get enough memory", "I can't get enough memory",
                             "I can't get enough memory"}));
}

TEST_F(Store, ContentsSurviveEveryKindOfResize) {
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

/// Pages of memory that this process has, or of addresses.
std::size_t pagesHeld(bool addresses) {
    std::size_t all = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return addresses ? all : resident;
}

TEST_F(Store, WhatLargeBlocksLeaveServesTheNextUntilItIsGivenBackOrMemoryIsShort) {
    if (largeblock::threshold > largeblock::pageSize) GTEST_SKIP() << "none is large here";
    constexpr std::size_t size = 64 << 20, pages = size / 4096;
    const auto take = [](std::size_t bytes) {
        void* const block = farmalloc(bytes);
        if (block != nullptr) std::memset(block, 1, bytes);
        return block;
    };
    void* stays = take(size);
    void* block = take(size);
    const std::size_t most = pagesHeld(false);
    farfree(&block);
    EXPECT_GT(pagesHeld(false) + pages / 8, most);
    void* parts[] = {take(size / 4), take(size / 2)}; // of other sizes, and resized
    parts[0] = farrealloc(parts[0], size / 3, "test");
    parts[1] = farrealloc(parts[1], size / 5, "test");
    EXPECT_LT(pagesHeld(false), most + pages / 8);
    for (void*& part : parts) farfree(&part);
    giveBackMemory();
    EXPECT_LT(pagesHeld(false), most - pages + pages / 8);

    block = take(size);
    farfree(&block);
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    const rlimit tight{(pagesHeld(true) + pages / 2) * 4096, limit.rlim_max};
    setrlimit(RLIMIT_AS, &tight);
    block = farmalloc(size);
    farfree(&block);
    const auto other = std::unique_ptr<char[]>(new (std::nothrow) char[size]);
    setrlimit(RLIMIT_AS, &limit);
    EXPECT_NE(other, nullptr);
    EXPECT_TRUE(shown.log.empty());
    farfree(&stays);
    giveBackMemory();
}

TEST_F(Store, AFullTableSaysSoTwiceAndWorksAgainAfterARelease) {
    std::vector<void*> blocks;
    std::mt19937 random(1);
    while (storeBlocks() < storeTableSize) {
        blocks.push_back(farmalloc(1));
        ASSERT_TRUE(shown.log.empty());
        if (blocks.size() % 3 != 0) continue;
        farfree(&blocks[random() % blocks.size()]); // holes for the compactions to close
    }
    EXPECT_EQ(farmalloc(1), nullptr);
    EXPECT_EQ(shown.log,
              (std::vector<std::string>{"message!|farmalloc|too many store allocations at once",
                                        "message!|farmalloc|I can't get enough memory"}));
    for (void*& block : blocks) farfree(&block);
    void* block = farmalloc(1); // compacts the table and finds a slot
    EXPECT_NE(block, nullptr);
    farfree(&block);
}

} // namespace
} // namespace polyfab
