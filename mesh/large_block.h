// SPDX-License-Identifier: GPL-3.0-or-later
// Memory for large arrays straight from the system in huge pages: touching new memory costs several
// times less there, and a resize moves page tables instead of bytes.
#pragma once

#include <cstddef>

namespace polyfab::largeblock {

/// Blocks from this size on are large. In sanitizer builds none is, so that every overrun of an
/// array is seen.
#if defined(POLYFAB_SANITIZE)
inline constexpr std::size_t threshold = ~std::size_t{0};
#else
inline constexpr std::size_t threshold = std::size_t{4} << 20;
#endif

/// A zeroed block that begins at a huge page, or null.
[[nodiscard]] void* allocate(std::size_t size);

/// Resizes a block of `allocate`; it may move. Null: no memory, and the block is as it was.
[[nodiscard]] void* resize(void* block, std::size_t oldSize, std::size_t newSize);

void release(void* block, std::size_t size);

} // namespace polyfab::largeblock
