// SPDX-License-Identifier: GPL-3.0-or-later
// Anonymous mappings that begin at a multiple of the huge-page size and are advised to use such
// pages; only pages that are written to take memory.
#include "mesh/large_block.h"

#include <cstdint>
#include <sys/mman.h>

namespace polyfab::largeblock {
namespace {

constexpr std::size_t hugePage = std::size_t{2} << 20;
constexpr std::size_t smallPage = 4096;

/// Bytes mapped for a block, or 0 when no such size exists.
std::size_t mapped(std::size_t size) {
    if (size > SIZE_MAX / 2) return 0;
    return (size + smallPage - 1) / smallPage * smallPage;
}

/// Maps `length` bytes at a huge-page boundary by mapping one huge page more and giving back what
/// stands over on both sides.
char* mapAligned(std::size_t length) {
    void* raw = mmap(nullptr, length + hugePage, PROT_READ | PROT_WRITE,
                     MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (raw == MAP_FAILED) return nullptr;
    char* const start = static_cast<char*>(raw);
    const std::size_t over = reinterpret_cast<std::uintptr_t>(start) % hugePage;
    const std::size_t before = over == 0 ? 0 : hugePage - over;
    if (before != 0) munmap(start, before);
    munmap(start + before + length, hugePage - before);
    return start + before;
}

} // namespace

void* allocate(std::size_t size) {
    const std::size_t length = mapped(size);
    if (length == 0) return nullptr;
    char* const block = mapAligned(length);
    if (block != nullptr) madvise(block, length, MADV_HUGEPAGE);
    return block;
}

void* resize(void* block, std::size_t oldSize, std::size_t newSize) {
    const std::size_t oldLength = mapped(oldSize);
    const std::size_t newLength = mapped(newSize);
    if (newLength == 0) return nullptr;
    if (mremap(block, oldLength, newLength, 0) != MAP_FAILED) return block;
    // No room to grow in place: the pages move to a larger aligned range.
    char* const target = mapAligned(newLength);
    if (target == nullptr) return nullptr;
    void* const moved = mremap(block, oldLength, newLength, MREMAP_MAYMOVE | MREMAP_FIXED, target);
    if (moved == MAP_FAILED) {
        munmap(target, newLength);
        return nullptr;
    }
    return moved;
}

void release(void* block, std::size_t size) { munmap(block, mapped(size)); }

} // namespace polyfab::largeblock
