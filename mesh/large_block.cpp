// SPDX-License-Identifier: GPL-3.0-or-later
// Anonymous mappings that begin at a multiple of the huge-page size and are advised to use such
// pages; only pages that are written to take memory. What is kept are huge pages one by one: the
// system moves a page to another address in a small part of the time that it takes to clear one.
#include "mesh/large_block.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <new>
#include <sys/mman.h>

namespace polyfab::largeblock {
namespace {

constexpr std::size_t smallPage = 4096;
constexpr auto pageLength = static_cast<std::ptrdiff_t>(pageSize);

/// Pages of blocks that were released, still mapped where they were. Each begins with the address
/// of the next one, so that to keep one takes no memory.
struct Kept {
    char* first = nullptr;
    std::size_t count = 0;
    std::size_t live = 0; ///< bytes of the blocks that are handed out
    std::size_t most = 0; ///< that were live at once since pages were given back last
    std::mutex mutex;     ///< a thread that is out of memory wants the pages, too
};

std::new_handler next = nullptr; ///< who is asked when there is nothing to give back

void giveBackOrAskNext() {
    if (giveBack()) return;
    if (next == nullptr) throw std::bad_alloc();
    next();
}

/// Has the kept pages given back where memory runs short, from the first use on.
bool joinHandlers() {
    next = std::set_new_handler(giveBackOrAskNext);
    return true;
}

Kept& kept() {
    static Kept& pool = *new Kept; // lives to the very end: so do blocks
    [[maybe_unused]] static const bool joined = joinHandlers();
    return pool;
}

void push(Kept& pool, char* page) {
    std::memcpy(page, &pool.first, sizeof pool.first);
    pool.first = page;
    ++pool.count;
}

char* pop(Kept& pool) {
    char* const page = pool.first;
    std::memcpy(&pool.first, page, sizeof pool.first);
    --pool.count;
    return page;
}

/// Bytes mapped for a block, or 0 when no such size exists.
std::size_t mapped(std::size_t size) {
    if (size > SIZE_MAX / 2) return 0;
    return (size + smallPage - 1) / smallPage * smallPage;
}

/// Maps so many bytes of untouched memory, at this address if it is not null. Null: no room there,
/// or anywhere, even when the kept pages are given back.
char* map(char* at, std::size_t length) {
    const auto ask = [=] {
        const int flags = MAP_PRIVATE | MAP_ANONYMOUS | (at != nullptr ? MAP_FIXED_NOREPLACE : 0);
        return mmap(at, length, PROT_READ | PROT_WRITE, flags, -1, 0);
    };
    void* found = ask();
    if (found == MAP_FAILED && errno == ENOMEM && giveBack()) found = ask();
    if (found == MAP_FAILED) return nullptr;
    madvise(found, length, MADV_HUGEPAGE);
    if (at == nullptr || found == at) return static_cast<char*>(found);
    munmap(found, length); // an old system takes the address for a wish
    return nullptr;
}

/// Maps `length` bytes at a huge-page boundary by mapping one huge page more and giving back what
/// stands over on both sides.
char* mapAligned(std::size_t length) {
    char* const start = map(nullptr, length + pageSize);
    if (start == nullptr) return nullptr;
    const std::size_t over = reinterpret_cast<std::uintptr_t>(start) % pageSize;
    const std::size_t before = over == 0 ? 0 : pageSize - over;
    if (before != 0) munmap(start, before);
    munmap(start + before + length, pageSize - before);
    return start + before;
}

bool movePage(char* from, char* to) {
    return mremap(from, pageSize, pageSize, MREMAP_MAYMOVE | MREMAP_FIXED, to) != MAP_FAILED;
}

/// Puts kept pages in place of the untouched ones from `start`, a huge-page boundary, to `end`.
void useKept(char* start, const char* end) {
    Kept& pool = kept();
    const std::lock_guard lock(pool.mutex);
    for (; end - start >= pageLength && pool.count != 0; start += pageSize) {
        char* const page = pop(pool);
        if (!movePage(page, start)) munmap(page, pageSize);
    }
}

/// Whether there is memory behind this page: room that nobody has touched is not worth keeping.
bool isTouched(char* page) {
    unsigned char resident = 0;
    return mincore(page, 1, &resident) == 0 && (resident & 1) != 0;
}

/// Keeps or unmaps what is mapped from `start`, a huge-page boundary, to `end`. With half of what
/// lived at once a command finds again all that it takes beside the mesh, as long as that is no
/// more than the mesh itself.
void letGo(char* start, const char* end) {
    Kept& pool = kept();
    const std::lock_guard lock(pool.mutex);
    for (; end - start >= pageLength && (pool.count + 1) * pageSize <= pool.most / 2;
         start += pageSize) {
        if (!isTouched(start)) break; // blocks are filled from the front
        push(pool, start);
    }
    if (start != end) munmap(start, static_cast<std::size_t>(end - start));
}

void countLive(std::size_t more, std::size_t less) {
    Kept& pool = kept();
    const std::lock_guard lock(pool.mutex);
    pool.live += more - less;
    pool.most = std::max(pool.most, pool.live);
}

/// Moves what the block holds. Page by page: kept ones among them are mappings of their own.
void moveBlock(char* from, char* to, std::size_t length) {
    std::size_t done = 0;
    for (; length - done >= pageSize; done += pageSize) {
        if (movePage(from + done, to + done)) continue;
        std::memcpy(to + done, from + done, pageSize);
        munmap(from + done, pageSize);
    }
    if (done == length) return;
    std::memcpy(to + done, from + done, length - done);
    munmap(from + done, length - done);
}

/// The block, which may have moved, or null. The new room is fresh: much of it may stay untouched.
char* grow(char* block, std::size_t from, std::size_t to) {
    if (map(block + from, to - from) != nullptr) return block;
    char* const target = mapAligned(to);
    if (target != nullptr) moveBlock(block, target, from);
    return target;
}

} // namespace

void* allocate(std::size_t size) {
    const std::size_t length = mapped(size);
    char* const block = length != 0 ? mapAligned(length) : nullptr;
    if (block == nullptr) return nullptr;
    useKept(block, block + length);
    countLive(length, 0);
    return block;
}

void* resize(void* block, std::size_t oldSize, std::size_t newSize) {
    const std::size_t from = mapped(oldSize);
    const std::size_t to = mapped(newSize);
    if (to == 0) return nullptr;
    char* start = static_cast<char*>(block);
    if (to < from) munmap(start + to, from - to); // mostly room that nothing has touched
    if (to > from) start = grow(start, from, to);
    if (start != nullptr) countLive(to, from);
    return start;
}

void release(void* block, std::size_t size) {
    const std::size_t length = mapped(size);
    letGo(static_cast<char*>(block), static_cast<char*>(block) + length);
    countLive(0, length);
}

void* takeKeptPage() {
    Kept& pool = kept();
    const std::lock_guard lock(pool.mutex);
    return pool.count != 0 ? pop(pool) : nullptr;
}

void releasePage(void* page) {
    letGo(static_cast<char*>(page), static_cast<char*>(page) + pageSize);
}

bool giveBack() {
    Kept& pool = kept();
    const std::lock_guard lock(pool.mutex);
    const bool any = pool.count != 0;
    while (pool.count != 0) munmap(pop(pool), pageSize);
    pool.most = pool.live;
    return any;
}

} // namespace polyfab::largeblock
