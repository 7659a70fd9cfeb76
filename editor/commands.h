// SPDX-License-Identifier: GPL-3.0-or-later
// The command table: one row a menu command. Menus, dispatch, batch mode and the printed list are
// all read off it.
#pragma once

#include <span>

namespace polyfab {

struct Command {
    int id;
    const char* menu;  ///< heading that it stands under
    const char* label; ///< "&" before the mnemonic letter
    void (*handler)(); ///< null: not built yet
};

/// Every command of the main menu, in menu order.
[[nodiscard]] std::span<const Command> commandTable();

/// The command of this id, or null.
[[nodiscard]] const Command* findCommand(int id);

} // namespace polyfab
