// SPDX-License-Identifier: GPL-3.0-or-later
// The command table: one row a menu command. Menus, dispatch, batch mode and the printed list are
// all read off it.
#pragma once

#include "workbench/long_work.h"

#include <cstddef>
#include <span>
#include <string>

namespace polyfab {

/// How the menu shows a row now.
struct Shown {
    std::string label; ///< in place of the row's; "&" as there, "&&" for the character itself
    bool enabled = true;
    bool hidden = false;
    bool keyed = true; ///< the row's shortcut works
};

struct Command {
    int id;
    const char* menu;            ///< heading that it stands under
    const char* label;           ///< "&" before the mnemonic letter
    void (*handler)();           ///< null: not built yet
    bool (*checked)() = nullptr; ///< whether its check mark shows; null: it never has one. What
                                 ///< has one only flips a switch: the mesh stays
    const char* key = "";        ///< shortcut such as "Ctrl+O", or several parted by "; "
    Shown (*shown)() = nullptr;  ///< null: always as the row says
    Escape escape = Escape::stopsNothing; ///< what the Escape key does while it runs
    bool takesLong = false;               ///< with a large mesh
    bool selects = false;                 ///< of the mesh it changes no more than the selection
    bool views = false;                   ///< it changes only the view, and the box with it
    const char* bareKey = ""; ///< a key that does the same, and is no shortcut: lists and
                              ///< panes hear it themselves
};

/// Heading of what stands only in the menu bars of name lists.
inline constexpr const char* listMenu = "&list";
/// Heading that every menu bar has.
inline constexpr const char* helpMenu = "&help";

/// The command that wants to close the window, in lists too.
inline constexpr int exitCommand = 262;

/// Every command, in menu order.
[[nodiscard]] std::span<const Command> commandTable();

/// The command of this id, or null.
[[nodiscard]] const Command* findCommand(int id);

/// A label without the marks of mnemonic letters, and without letters that are only there for that:
/// ": &9" behind it, "&4: " before it.
[[nodiscard]] std::string plainLabel(std::string text);

/// Carries the command out and brings the check marks up to date. What is not built yet, or no
/// command at all, does nothing.
void runCommand(int id);

} // namespace polyfab
