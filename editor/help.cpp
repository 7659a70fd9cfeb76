// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/help.h"

#include "editor/command_advice.h"
#include "editor/command_table.h"
#include "editor/editor_state.h"
#include "editor/modes/modes.h"
#include "platform/platform.h"

#include <algorithm>
#include <iterator>
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

struct KeyRow {
    const char* keys;
    const char* does;
};

/// What the mouse and the keys do in every mode.
constexpr KeyRow everywhere[] = {
    {"wheel", "larger or smaller, about the mouse"},
    {"middle drag", "moves the picture; with Shift turns it"},
    {"Home", "fits everything in both panes"},
    {"full stop", "fits the selected faces"},
    {"Ctrl+1, Ctrl+2 and a left press",
     "put the first or the second settable point under the mouse"},
    {"Escape", "puts back what a drag did; stops long work that can be stopped"},
    {"right click", "opens a menu, in modes that have no other use for that button"},
};

constexpr KeyRow inLists[] = {
    {"click", "picks an entry and closes the list"},
    {"Ctrl+click", "adds or takes away an entry"},
    {"Alt+click", "picks just that entry; the list stays open"},
    {"right click", "asks for a new name of a group or material"},
    {"Ctrl+drag", "moves a group to another place"},
    {"A, C", "pick all, none"},
    {"S", "counts selected faces only, or all again"},
    {"N", "adds a new group or material"},
    {"T", "gives the picked groups the chosen texture map number"},
    {"wheel, Page Up, Page Down", "scroll"},
    {"Escape, F1, F2, F3", "close the list"},
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

template <std::size_t count>
std::string table(const char* heading, const KeyRow (&rows)[count]) {
    std::string text = std::string("\n## ") + heading + "\n\n| key | what it does |\n|---|---|\n";
    for (const KeyRow& row : rows) text += "|" + cell(row.keys) + cell(row.does) + "\n";
    return text;
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
    return commands + table("In every mode", everywhere) + modes
           + table("In a list of names", inLists);
}

void openHelpHere() { platform().openHelp(presentChapter()); }

void showKeys() { platform().showPage("all keys", keySheet()); }

} // namespace polyfab
