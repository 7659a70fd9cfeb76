// SPDX-License-Identifier: GPL-3.0-or-later
// Memory for large arrays straight from the system in huge pages: touching new memory costs several
// times less there, and a resize moves page tables instead of bytes. Pages of released blocks are
// kept, up to about the size of what stays, and serve the next blocks: for fresh ones the system
// would have to clear them.
#pragma once

#include <cstddef>

namespace polyfab::largeblock {

/// Of a huge page.
inline constexpr std::size_t pageSize = std::size_t{2} << 20;

/// Blocks from this size on are large. In sanitizer builds none is, so that every overrun of an
/// array is seen.
#if defined(POLYFAB_SANITIZE)
inline constexpr std::size_t threshold = ~std::size_t{0};
#else
inline constexpr std::size_t threshold = pageSize;
#endif

/// A block that begins at a huge page, of no particular contents, or null.
[[nodiscard]] void* allocate(std::size_t size);

/// Resizes a block of `allocate`; it may move. Null: no memory, and the block is as it was.
[[nodiscard]] void* resize(void* block, std::size_t oldSize, std::size_t newSize);

void release(void* block, std::size_t size);

/// A single page, of no particular contents, if any is kept; otherwise null. It does not count
/// where the bound of what is kept is worked out.
[[nodiscard]] void* takeKeptPage();

/// Releases such a page.
void releasePage(void* page);

/// Gives the kept pages back to the system. Whether there were any. Also done by itself before an
/// allocation, `new` included, fails.
bool giveBack();

} // namespace polyfab::largeblock
