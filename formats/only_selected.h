// SPDX-License-Identifier: GPL-3.0-or-later
// The question that every writer asks about a selection.
#pragma once

namespace polyfab {

/// When a face of OB is not selected, asks whether only the selected ones shall be written; true
/// after yes. With `deletedToo` a deleted face that is not selected is reason enough to ask.
[[nodiscard]] bool askOnlySelected(bool deletedToo);

} // namespace polyfab
