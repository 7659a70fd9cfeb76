// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/menus.h"

#include "editor/commands.h"

#include <string_view>

namespace polyfab {
namespace {

/// Which headings a menu bar has.
struct BarRow {
    std::string_view name;
    bool (*has)(std::string_view menu);
};

constexpr BarRow bars[] = {
    {"POLYFAB", [](std::string_view menu) { return menu != listMenu; }},
    {"GMENUMENU", [](std::string_view menu) { return menu == listMenu || menu == helpMenu; }},
    {"MENUMENU", [](std::string_view menu) { return menu == helpMenu; }},
};

MenuItem menuItem(const Command& command) {
    return {command.id,
            command.label,
            command.handler != nullptr,
            command.checked != nullptr,
            command.checked != nullptr && command.checked(),
            command.key};
}

} // namespace

void showMenuBar(const std::string& name) {
    MenuBar shown;
    for (const BarRow& bar : bars) {
        if (bar.name != name) continue;
        for (const Command& command : commandTable()) {
            if (!bar.has(command.menu)) continue;
            if (shown.empty() || shown.back().title != command.menu) {
                shown.push_back({command.menu, {}});
            }
            shown.back().items.push_back(menuItem(command));
        }
    }
    platform().setMenuBar(name, shown);
}

void updateCheckMarks() {
    for (const Command& command : commandTable()) {
        if (command.checked == nullptr) continue;
        platform().setMenuItem(command.id, command.handler != nullptr, command.checked());
    }
}

std::vector<CommandInfo> listCommands() {
    std::vector<CommandInfo> list;
    for (const Command& command : commandTable()) {
        list.push_back({command.id, command.menu, command.label, command.handler != nullptr});
    }
    return list;
}

} // namespace polyfab
