// SPDX-License-Identifier: GPL-3.0-or-later
// Slabs: each page is cut into slots of one size, and those that are free form a list that runs
// through themselves. Chunks that were made together lie together, and mostly go together. Where no
// page is kept the chunks come from the heap: to clear fresh huge pages costs no less.
#include "mesh/chunk_memory.h"

#include "mesh/large_block.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <list>
#include <mutex>
#include <new>
#include <unordered_map>

namespace polyfab {
namespace {

using largeblock::pageSize;

constexpr std::size_t smallest = 4096, largest = 32768; ///< of the slots, powers of two

struct Slab {
    std::byte* page;
    std::byte* freed = nullptr; ///< first slot that was used before, or null
    std::size_t touched = 0;    ///< bytes in front of the slots that were never used
    std::size_t used = 0;       ///< bytes
};

using Slabs = std::list<Slab>;

struct Memory {
    Slabs open[std::bit_width(largest / smallest)]; ///< with a free slot, by the size of slots
    Slabs full;
    std::unordered_map<std::byte*, Slabs::iterator> byPage;
    std::mutex mutex;
};

Memory& memory() {
    static Memory& all = *new Memory; // lives to the very end: so may snapshots
    return all;
}

bool hasSlots(std::size_t size) {
    return std::has_single_bit(size) && size >= smallest && size <= largest
           && pageSize >= largeblock::threshold;
}

Slabs& openOf(Memory& m, std::size_t size) { return m.open[std::bit_width(size / smallest) - 1]; }

std::byte* pageOf(std::byte* slot) {
    return slot - reinterpret_cast<std::uintptr_t>(slot) % pageSize;
}

/// Makes a page that is kept a slab, if there is one.
void addSlab(Memory& m, Slabs& open) {
    void* const page = largeblock::takeKeptPage();
    if (page == nullptr) return;
    try {
        open.push_front({static_cast<std::byte*>(page)});
        m.byPage.emplace(open.front().page, open.begin());
    } catch (const std::bad_alloc&) {
        if (!open.empty()) open.pop_front();
        largeblock::releasePage(page);
    }
}

std::byte* plainBytes(std::size_t size) { return static_cast<std::byte*>(::operator new(size)); }

std::byte* takeSlot(Slab& slab, std::size_t size) {
    slab.used += size;
    std::byte* const slot = slab.freed;
    if (slot == nullptr) return slab.page + (slab.touched += size) - size;
    std::memcpy(&slab.freed, slot, sizeof slab.freed);
    return slot;
}

} // namespace

std::byte* takeChunkBytes(std::size_t size) {
    if (!hasSlots(size)) return plainBytes(size);
    Memory& m = memory();
    const std::lock_guard lock(m.mutex);
    Slabs& open = openOf(m, size);
    if (open.empty()) addSlab(m, open);
    if (open.empty()) return plainBytes(size);
    Slab& slab = open.front();
    std::byte* const slot = takeSlot(slab, size);
    if (slab.used == pageSize) m.full.splice(m.full.begin(), open, open.begin());
    return slot;
}

void releaseChunkBytes(std::byte* bytes, std::size_t size) {
    if (!hasSlots(size)) return ::operator delete(bytes);
    Memory& m = memory();
    const std::lock_guard lock(m.mutex);
    const auto entry = m.byPage.find(pageOf(bytes));
    if (entry == m.byPage.end()) return ::operator delete(bytes);
    const Slabs::iterator slab = entry->second;
    Slabs& open = openOf(m, size);
    if (slab->used == pageSize) open.splice(open.end(), m.full, slab);
    std::memcpy(bytes, &slab->freed, sizeof slab->freed);
    slab->freed = bytes;
    slab->used -= size;
    if (slab->used != 0) return;
    largeblock::releasePage(slab->page);
    m.byPage.erase(entry);
    open.erase(slab);
}

} // namespace polyfab
