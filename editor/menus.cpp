// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/menus.h"

#include "editor/command_table.h"
#include "workbench/recent_files.h"

#include <string_view>
#include <vector>

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

Shown shownNow(const Command& command) {
    if (command.shown != nullptr) return command.shown();
    return {command.label, command.handler != nullptr, false};
}

/// What the rows that change say now.
std::vector<std::string> changingLabels() {
    std::vector<std::string> labels;
    for (const Command& command : commandTable()) {
        if (command.shown != nullptr) labels.push_back(command.shown().label);
    }
    return labels;
}

/// What they said when the bar of the mesh was put on the window.
std::vector<std::string> labelsInBar;

} // namespace

void showMenuBar(const std::string& name) {
    MenuBar shown;
    for (const BarRow& bar : bars) {
        if (bar.name != name) continue;
        for (const Command& command : commandTable()) {
            if (!bar.has(command.menu)) continue;
            const Shown now = shownNow(command);
            if (now.hidden) continue;
            if (shown.empty() || shown.back().title != command.menu) {
                shown.push_back({command.menu, {}});
            }
            const bool checkable = command.checked != nullptr;
            shown.back().items.push_back({command.id, now.label, now.enabled, checkable,
                                          checkable && command.checked(), command.key});
        }
    }
    platform().setMenuBar(name, shown);
    labelsInBar = changingLabels();
}

void refreshMenuBar() {
    if (changingLabels() != labelsInBar) showMenuBar("POLYFAB");
}

void updateCheckMarks() {
    for (const Command& command : commandTable()) {
        if (command.checked == nullptr) continue;
        platform().setMenuItem(command.id, command.handler != nullptr, command.checked());
    }
}

void updateGreying() {
    findMissingRecentFiles();
    for (const Command& command : commandTable()) {
        if (command.shown == nullptr) continue;
        platform().setMenuItem(command.id, command.shown().enabled, false);
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
