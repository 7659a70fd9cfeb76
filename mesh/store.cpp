// SPDX-License-Identifier: GPL-3.0-or-later
// The table keeps the blocks in allocation order; an index from address to block beside it makes
// every look-up a hash probe. Slots point at the index's nodes, which never move, so a compaction
// only writes the new slot numbers.
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

struct Tracked {
    int slot = 0;
    std::size_t size = 0;
};

using Index = std::unordered_map<void*, Tracked>;

constexpr int compactEvery = 4096;

Index::value_type* table[storeTableSize]; // null: released, or an allocation that failed
int nFMC = 0;                             // slots in use

Index& tracked() {
    static Index& index = *new Index; // lives to the very end: so do blocks that it knows
    return index;
}

void compact() {
    int kept = 0;
    for (int slot = 0; slot < nFMC; ++slot) {
        if (table[slot] == nullptr) continue;
        table[kept] = table[slot];
        table[kept]->second.slot = kept;
        ++kept;
    }
    nFMC = kept;
}

void* systemAllocate(std::size_t size) {
    return size >= largeblock::threshold ? largeblock::allocate(size) : std::malloc(size);
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
        result = newSize == 0 ? nullptr : std::realloc(block, newSize);
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
    if (nFMC % compactEvery == 0) compact();
    void* block = nullptr;
    if (nFMC < storeTableSize) {
        block = systemAllocate(size);
        table[nFMC] = nullptr;
        if (block != nullptr) table[nFMC] = &*tracked().insert({block, {nFMC, size}}).first;
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
    void* const result = systemResize(block, node.mapped().size, size);
    const int slot = node.mapped().slot;
    table[slot] = nullptr;
    if (result != nullptr) {
        node.key() = result;
        node.mapped().size = size;
        table[slot] = &*tracked().insert(std::move(node)).position;
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
    systemRelease(*block, found->second.size);
    table[found->second.slot] = nullptr;
    tracked().erase(found);
    *block = nullptr;
}

int storeBlocks() { return static_cast<int>(tracked().size()); }

} // namespace polyfab
