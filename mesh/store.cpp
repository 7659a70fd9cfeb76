// SPDX-License-Identifier: GPL-3.0-or-later
// The live blocks stand in an index from address to size. Of the table itself only the number of
// slots in use can be seen, which grows with every allocation and which a compaction brings back to
// the number of live blocks; so a number is all that is kept of it.
#include "mesh/store.h"

#include "mesh/large_block.h"
#include "platform/platform.h"

#include <cstdlib>
#include <cstring>
#include <string>
#include <unordered_map>
#include <utility>

namespace polyfab {
namespace {

using Index = std::unordered_map<void*, std::size_t>;

constexpr int compactEvery = 4096;

int nFMC = 0; // slots in use: live blocks, released ones and allocations that failed

Index& tracked() {
    static Index& index = *new Index; // lives to the very end: so do blocks that it knows
    return index;
}

/// The block of `allocate`, which is called again with more memory at hand when it gives none.
template <typename Allocate>
void* withAllMemory(Allocate allocate) {
    void* const block = allocate();
    return block == nullptr && largeblock::giveBack() ? allocate() : block;
}

void* systemAllocate(std::size_t size) {
    if (size >= largeblock::threshold) return largeblock::allocate(size);
    return withAllMemory([=] { return std::malloc(size); });
}

void systemRelease(void* block, std::size_t size) {
    if (size >= largeblock::threshold) {
        largeblock::release(block, size);
    } else {
        std::free(block);
    }
}

/// The block at its new size; null when that is 0 (then released) or when memory ran out (then the
/// old block is released too, as nobody tracks it any more).
void* systemResize(void* block, std::size_t oldSize, std::size_t newSize) {
    void* result = nullptr;
    const bool wasLarge = oldSize >= largeblock::threshold;
    if (wasLarge && newSize >= largeblock::threshold) {
        result = largeblock::resize(block, oldSize, newSize);
    } else if (!wasLarge && newSize < largeblock::threshold) {
        if (newSize != 0) result = withAllMemory([=] { return std::realloc(block, newSize); });
    } else {
        result = newSize == 0 ? nullptr : systemAllocate(newSize);
        if (result != nullptr) {
            std::memcpy(result, block, oldSize < newSize ? oldSize : newSize);
            systemRelease(block, oldSize);
        }
    }
    if (result == nullptr) systemRelease(block, oldSize);
    return result;
}

void complain(const std::string& title, const char* text) {
    platform().message(title, text, Icon::exclamation);
}

constexpr const char* noMemory = "I can't get enough memory";

} // namespace

void* farmalloc(std::size_t size) {
    if (nFMC % compactEvery == 0) nFMC = storeBlocks();
    void* block = nullptr;
    if (nFMC < storeTableSize) {
        block = systemAllocate(size);
        if (block != nullptr) tracked().emplace(block, size);
        ++nFMC;
    } else {
        complain("farmalloc", "too many store allocations at once");
    }
    if (block == nullptr && size != 0) complain("farmalloc", noMemory);
    return block;
}

void* farrealloc(void* block, std::size_t size, const char* label) {
    if (block == nullptr) return farmalloc(size);
    const auto found = tracked().find(block);
    if (found == tracked().end()) {
        complain("nFMC=" + std::to_string(nFMC) + ", n=" + std::to_string(size),
                 "you tried to realloc memory which had not been allocated");
        return nullptr;
    }
    auto node = tracked().extract(found);
    void* const result = systemResize(block, node.mapped(), size);
    if (result != nullptr) {
        node.key() = result;
        node.mapped() = size;
        tracked().insert(std::move(node));
    } else if (size != 0) {
        complain(label != nullptr ? label : "an array", noMemory);
    }
    return result;
}

void farfreeBlock(void** block) {
    if (*block == nullptr) return;
    const auto found = tracked().find(*block);
    if (found == tracked().end()) {
        complain("nFMC=" + std::to_string(nFMC),
                 "you tried to free memory which had not been allocated");
        return;
    }
    systemRelease(*block, found->second);
    tracked().erase(found);
    *block = nullptr;
}

void giveBackMemory() { largeblock::giveBack(); }

int storeBlocks() { return static_cast<int>(tracked().size()); }

} // namespace polyfab
