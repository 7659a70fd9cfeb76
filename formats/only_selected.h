// SPDX-License-Identifier: GPL-3.0-or-later
// The question that every writer asks about a selection.
#pragma once

namespace polyfab {

struct Mesh;

/// When a face is not selected, asks whether only the selected ones shall be written; true
/// after yes. With `deletedToo` a deleted face that is not selected is reason enough to ask.
[[nodiscard]] bool askOnlySelected(const Mesh& mesh, bool deletedToo);

} // namespace polyfab
