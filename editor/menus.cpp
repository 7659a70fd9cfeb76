// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/menus.h"

#include "editor/command_advice.h"
#include "editor/command_table.h"
#include "editor/history/undo.h"
#include "editor/menu_layout.h"
#include "editor/modes/modes.h"
#include "workbench/recent_files.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>
#include <vector>

namespace polyfab {
namespace {

bool isMoveInHistory(const Command& command) {
    return command.id == undoCommand || command.id == redoCommand;
}

/// Whether every list has it: its shortcut works there, or is seen not to.
bool isInLists(const Command& command) {
    return command.menu == std::string_view(helpMenu) || command.id == exitCommand
           || isMoveInHistory(command);
}

/// A shortcut that a list has a use for itself.
bool isTakenByLists(const Command& command) { return command.key == std::string_view("F1"); }

/// What a menu bar has.
struct BarRow {
    std::string_view name;
    bool (*has)(const Command& command);
    bool ofList = false; ///< it belongs to a list, which has a use for F1 itself
};

constexpr BarRow bars[] = {
    {"POLYFAB", [](const Command& c) { return c.menu != std::string_view(listMenu); }},
    {"GMENUMENU",
     [](const Command& c) { return c.menu == std::string_view(listMenu) || isInLists(c); }, true},
    {"MENUMENU", isInLists, true},
};

/// An open list holds picks that are no step yet, so that nothing is undone there.
Shown shownNow(const Command& command, bool inList = false) {
    if (inList && isMoveInHistory(command)) return {command.label, false};
    if (command.shown != nullptr) return command.shown();
    return {command.label, command.handler != nullptr, false};
}

/// A mark that says which of several holds: the mode that is on, what rotations turn.
bool isRadio(const Command& command) {
    return entersMode(command.id) || excludeEachOther(menuPlace(command.id).kind);
}

bool isChecked(const Command& command) {
    if (entersMode(command.id)) return command.id == presentModeCommand();
    return command.checked != nullptr && command.checked();
}

MenuItem itemOf(const Command& command, const Shown& now, bool withKey) {
    const bool radio = isRadio(command);
    return {.id = command.id,
            .label = now.label + (*command.bareKey != '\0' ? "\t" : "") + command.bareKey,
            .enabled = now.enabled,
            .checkable = radio || command.checked != nullptr,
            .checked = isChecked(command),
            .key = withKey ? command.key : "",
            .radio = radio,
            .name = plainLabel(now.label),
            .advice = adviceOf(command.id),
            .items = {}};
}

/// A row of the table on its way into its menu.
struct Placed {
    const Command* command;
    Shown now;
    MenuPlace place;
};

/// The items that the next command of this kind goes behind, with the separator that parts it from
/// another kind. None stands between sub-menus.
std::vector<MenuItem>& roomFor(Menu& menu, const char* subMenu, bool newKind) {
    const auto part = [](std::vector<MenuItem>& items) {
        if (!items.empty()) items.push_back({});
    };
    if (subMenu == nullptr) {
        if (newKind) part(menu.items);
        return menu.items;
    }
    const bool afterSubMenu = !menu.items.empty() && !menu.items.back().items.empty();
    if (!afterSubMenu || menu.items.back().label != subMenu) {
        if (!afterSubMenu) part(menu.items);
        menu.items.push_back({.label = subMenu});
        newKind = false;
    }
    std::vector<MenuItem>& inner = menu.items.back().items;
    if (newKind) part(inner);
    return inner;
}

Menu layOut(const char* title, std::vector<Placed> rows, const BarRow& bar) {
    std::stable_sort(rows.begin(), rows.end(),
                     [](const Placed& a, const Placed& b) { return a.place < b.place; });
    Menu menu{title, {}};
    int kind = -1;
    for (const Placed& row : rows) {
        const bool newKind = std::exchange(kind, row.place.kind) != row.place.kind;
        roomFor(menu, subMenuOf(kind), newKind)
            .push_back(itemOf(*row.command, row.now,
                              row.now.keyed && !(bar.ofList && isTakenByLists(*row.command))));
    }
    return menu;
}

/// Those rows of one heading that are shown. What is not laid out follows its neighbour.
std::vector<Placed> rowsOf(std::string_view heading, const BarRow& bar) {
    std::vector<Placed> rows;
    MenuPlace place;
    for (const Command& command : commandTable()) {
        if (command.menu != heading || !bar.has(command)) continue;
        const MenuPlace own = menuPlace(command.id);
        if (own.kind >= 0) place = own;
        if (Shown now = shownNow(command, bar.ofList); !now.hidden)
            rows.push_back({&command, now, place});
    }
    return rows;
}

/// What the rows that change say now, and whether they have a key.
std::vector<std::string> changingLabels() {
    std::vector<std::string> labels;
    for (const Command& command : commandTable()) {
        if (command.shown == nullptr) continue;
        const Shown now = command.shown();
        labels.push_back(now.label + (now.keyed ? command.key : ""));
    }
    return labels;
}

/// What they said when the bar of the mesh was put on the window.
std::vector<std::string> labelsInBar;

} // namespace

void showMenuBar(const std::string& name) {
    MenuBar shown;
    const auto bar = std::find_if(std::begin(bars), std::end(bars),
                                  [&](const BarRow& row) { return row.name == name; });
    const char* heading = "";
    for (const Command& command : commandTable()) {
        if (command.menu == std::exchange(heading, command.menu)) continue;
        std::vector<Placed> rows = rowsOf(command.menu, *bar);
        if (!rows.empty()) shown.push_back(layOut(command.menu, std::move(rows), *bar));
    }
    platform().setMenuBar(name, shown);
    labelsInBar = changingLabels();
}

void refreshMenuBar() {
    if (changingLabels() != labelsInBar) showMenuBar("POLYFAB");
}

void updateCheckMarks() {
    for (const Command& command : commandTable()) {
        if (command.checked == nullptr && !isRadio(command)) continue;
        platform().setMenuItem(command.id, command.handler != nullptr, isChecked(command));
    }
}

void updateGreying() {
    findMissingRecentFiles();
    for (const Command& command : commandTable()) {
        if (command.shown == nullptr) continue;
        platform().setMenuItem(command.id, command.shown().enabled, isChecked(command));
    }
}

std::vector<CommandInfo> listCommands() {
    std::vector<CommandInfo> list;
    for (const Command& command : commandTable()) {
        list.push_back({command.id, command.menu, command.label, command.handler != nullptr,
                        *command.key != '\0' ? command.key : command.bareKey,
                        adviceOf(command.id)});
    }
    return list;
}

} // namespace polyfab
