// SPDX-License-Identifier: GPL-3.0-or-later
// Memory for the chunks of snapshots. A large mesh has thousands of them, of few sizes; whole ones
// lie in the huge pages that large blocks have left, as long as there are any.
#pragma once

#include <cstddef>

namespace polyfab {

/// So many bytes, of no particular value. May throw std::bad_alloc.
[[nodiscard]] std::byte* takeChunkBytes(std::size_t size);

/// Releases what was taken with this size. Any thread may do it.
void releaseChunkBytes(std::byte* bytes, std::size_t size);

} // namespace polyfab
