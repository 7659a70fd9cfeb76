// SPDX-License-Identifier: GPL-3.0-or-later
// The tracked store: every block that the mesh and its tools own is entered in one table, so that
// a release or a resize of something that was never handed out is caught and reported.
#pragma once

#include <cstddef>

namespace polyfab {

/// Slots of the store table; a slot whose block was released stays taken until the compaction that
/// every 4096th allocation starts with.
inline constexpr int storeTableSize = 0x40000;

/// A block of `size` bytes, not cleared, or null after a message box. Aligned for any record.
[[nodiscard]] void* farmalloc(std::size_t size);

/// Resizes a block, which may move. `label` names the array in the failure message ("an array" when
/// null). A null block is allocated; size 0 releases and gives null. A block that the store does
/// not know is left untouched after a message, and null returned. When memory runs out the result
/// is null and the old block is released.
[[nodiscard]] void* farrealloc(void* block, std::size_t size, const char* label);

/// Releases `*block` and sets it to null; null is ignored. A block that the store does not know is
/// reported and left as it is.
void farfreeBlock(void** block);

template <typename T>
void farfree(T** block) {
    void* address = *block;
    farfreeBlock(&address);
    *block = static_cast<T*>(address);
}

/// Memory of released blocks that was kept for later ones goes back to the system.
void giveBackMemory();

/// Blocks that are live in the table.
[[nodiscard]] int storeBlocks();

} // namespace polyfab
