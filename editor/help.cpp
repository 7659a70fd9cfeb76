// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/help.h"

#include "editor/command_advice.h"
#include "editor/command_table.h"
#include "editor/editor_state.h"
#include "editor/lists/name_list.h"
#include "editor/modes/modes.h"
#include "platform/platform.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <string_view>

namespace polyfab {
namespace {

struct ChapterRow {
    int mode; ///< the command that enters it
    const char* chapter;
};

/// Of the modes that are not for moving and turning.
constexpr ChapterRow chapters[] = {
    {358, ""},
    {348, "handling-faces-edges-vertexes-and-groups"},
    {349, "handling-faces-edges-vertexes-and-groups"},
    {350, "handling-faces-edges-vertexes-and-groups"},
    {353, "handling-faces-edges-vertexes-and-groups"},
    {357, "the-box"},
    {362, "the-box"},
    {378, "selecting"},
    {379, "selecting"},
    {380, "selecting"},
    {381, "selecting"},
    {selectByRectangle, "selecting"},
};

const char* presentChapter() {
    if (editorState.subview != 0) return "picking-by-name";
    const int mode = presentModeCommand();
    const auto row = std::find_if(std::begin(chapters), std::end(chapters),
                                  [=](const ChapterRow& each) { return each.mode == mode; });
    return row != std::end(chapters) ? row->chapter : "moving-resizing-rotating-and-twisting";
}

/// What the mouse and the keys do in every mode.
constexpr KeyWords everywhere[] = {
    {"wheel", "larger or smaller, about the mouse"},
    {"middle drag", "moves the picture; with Shift turns it"},
    {"Home", "fits everything in both panes"},
    {"full stop", "fits the selected faces"},
    {"Ctrl+1, Ctrl+2 and a left press",
     "put the first or the second settable point under the mouse"},
    {"Escape", "puts back what a drag did; stops long work that can be stopped"},
    {"right click", "opens a menu, in modes that have no other use for that button"},
};

constexpr KeyWords mouseInLists[] = {
    {"click", "picks an entry and closes the list"},
    {"Ctrl+click", "adds or takes away an entry"},
    {"Alt+click", "picks just that entry; the list stays open"},
    {"right click", "asks for a new name of a group or material"},
    {"Ctrl+drag", "moves a group to another place"},
};

/// As a cell of a table.
std::string cell(std::string_view text) {
    std::string escaped = " ";
    for (const char letter : text) {
        if (std::string_view("|*_`<\\+-").find(letter) != std::string_view::npos) escaped += '\\';
        escaped += letter;
    }
    return escaped + " |";
}

std::string rows(std::span<const KeyWords> all) {
    std::string text;
    for (const KeyWords& row : all) text += "|" + cell(row.keys) + cell(row.does) + "\n";
    return text;
}

std::string heading(const char* where) {
    return std::string("\n## ") + where + "\n\n| key | what it does |\n|---|---|\n";
}

} // namespace

std::string keySheet() {
    std::string commands = "# All keys\n\n## Commands\n\n| key | command | what it does |\n"
                           "|---|---|---|\n";
    std::string modes = "\n## Modes\n\n| key | mode | what the mouse does |\n|---|---|---|\n";
    for (const Command& command : commandTable()) {
        if (command.handler == nullptr) continue;
        const bool isMode = entersMode(command.id);
        if (!isMode && *command.key == '\0') continue;
        (isMode ? modes : commands) += "|" + cell(command.key) + cell(plainLabel(command.label))
                                       + cell(adviceOf(command.id)) + "\n";
    }
    return commands + heading("In every mode") + rows(everywhere) + modes
           + heading("In a list of names") + rows(mouseInLists) + rows(nameListKeys());
}

void openHelpHere() { platform().openHelp(presentChapter()); }

void showKeys() { platform().showPage("all keys", keySheet()); }

} // namespace polyfab
