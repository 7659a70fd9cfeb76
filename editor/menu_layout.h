// SPDX-License-Identifier: GPL-3.0-or-later
// How the commands of a menu are laid out: which are of a kind, in what order the kinds stand, and
// which of them have a sub-menu.
#pragma once

#include <compare>

namespace polyfab {

/// Where a command stands in its menu.
struct MenuPlace {
    int kind = -1; ///< commands of different kinds are parted by a separator; -1: not laid out
    int place = 0; ///< among those of its kind
    auto operator<=>(const MenuPlace&) const = default;
};

/// One that is not laid out stands behind the one before it in the command table.
[[nodiscard]] MenuPlace menuPlace(int command);

/// The sub-menu that the commands of this kind stand in, or null.
[[nodiscard]] const char* subMenuOf(int kind);

/// Whether of the commands of this kind just one holds at a time.
[[nodiscard]] bool excludeEachOther(int kind);

} // namespace polyfab
