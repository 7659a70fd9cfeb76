// SPDX-License-Identifier: GPL-3.0-or-later
// The integrity check: every count against its capacity, every reference of a live face against the
// array that it points into.
#pragma once

#include "mesh/mesh.h"

#include <cstdint>

namespace polyfab {

/// Null when the mesh is sound, else the text of the first fault, in a buffer that the next fault
/// overwrites. One pass, no allocation, nothing changed. Byte distances in the text are counted in
/// the nominal record widths (corner 16, texture coordinate and normal 24, point 56), so that the
/// same fault reads the same on every machine.
[[nodiscard]] const char* check(const Mesh& mesh);

/// Null when `offset` is a multiple of `elementSize` and the quotient is 0 to `count` - 1, else the
/// fault text for the field `name`, in the buffer of `check`.
[[nodiscard]] const char* checkSpan(std::int64_t offset, std::int64_t elementSize,
                                    std::int64_t count, const char* name);

} // namespace polyfab
