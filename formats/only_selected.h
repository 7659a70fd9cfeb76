// SPDX-License-Identifier: GPL-3.0-or-later
// The question that every writer asks about a selection.
#pragma once

#include <cstdint>

namespace polyfab {

struct Mesh;

/// Which faces a writer writes: all of them, or as the user says.
enum class Wanted : std::uint8_t { asked, all };

/// When a face is not selected, asks whether only the selected ones shall be written, unless all
/// are wanted; true after yes. No is marked where none is selected. With `deletedToo` a deleted
/// face that is not selected is reason enough to ask.
[[nodiscard]] bool askOnlySelected(const Mesh& mesh, bool deletedToo,
                                   Wanted wanted = Wanted::asked);

} // namespace polyfab
