// SPDX-License-Identifier: GPL-3.0-or-later
// The name lists: groups, materials, parts and texture map areas as a full-window grid of names,
// from which the user picks.
#pragma once

#include "platform/platform.h"

#include <string>
#include <vector>

namespace polyfab {

/// A key, or what else the user does, and what comes of it.
struct KeyWords {
    const char* keys;
    const char* does;
};

/// What the keys do in a list.
[[nodiscard]] std::vector<KeyWords> nameListKeys();

/// Starts the list of the open sub-view at its first column.
void openNameList();

/// An event of the window while the list is open. What undo calls the step that it may lead to; "":
/// like the list.
[[nodiscard]] const char* handleInNameList(const Event& event);

/// The list of this sub-view has closed: selects every live face whose entry is picked, and
/// unselects the others.
void applyNameList(int subview);

/// Which entries the open list shows, of how many, and how many are picked.
[[nodiscard]] std::string nameListRange();

void toggleTextureNumbers();
[[nodiscard]] bool showsTextureNumbers();

} // namespace polyfab
