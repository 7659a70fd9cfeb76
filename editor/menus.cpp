// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/menus.h"

#include "editor/commands.h"

namespace polyfab {

MenuBar mainMenu() {
    MenuBar bar;
    for (const Command& command : commandTable()) {
        if (bar.empty() || bar.back().title != command.menu) bar.push_back({command.menu, {}});
        bar.back().items.push_back({command.id, command.label, command.handler != nullptr});
    }
    return bar;
}

std::vector<CommandInfo> listCommands() {
    std::vector<CommandInfo> list;
    for (const Command& command : commandTable()) {
        list.push_back({command.id, command.menu, command.label, command.handler != nullptr});
    }
    return list;
}

} // namespace polyfab
