// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/tool_bar.h"

#include "editor/editor_state.h"
#include "editor/history/undo.h"
#include "editor/modes/modes.h"
#include "editor/modes/navigation.h"
#include "io/save_file.h"
#include "io/state_folder.h"
#include "platform/platform.h"

namespace polyfab {
namespace {

struct ButtonRow {
    int command = 0; ///< 0: a separator
    const char* icon = "";
};

constexpr ButtonRow buttons[] = {
    {commandid::readMesh, "open"},
    {commandid::save, "save"},
    {},
    {undoCommand, "undo"},
    {redoCommand, "redo"},
    {},
    {358, "look"},
    {selectByRectangle, "rectangle"},
    {349, "face"},
    {348, "edge"},
    {353, "vertex"},
    {350, "group"},
    {},
    {351, "move"},
    {359, "resize"},
    {365, "rescale-x"},
    {367, "rescale-y"},
    {369, "rescale-z"},
    {364, "rotate-x"},
    {366, "rotate-y"},
    {368, "rotate-z"},
    {1062, "twist-x"},
    {1063, "twist-y"},
    {1064, "twist-z"},
    {},
    {352, "move-view"},
    {363, "resize-view"},
    {357, "left-cutoff"},
    {362, "right-cutoff"},
    {},
    {fitCommand, "fit"},
};

std::string choicePath() { return stateFolder + "/tool-bar"; }

constexpr const char* off = "off\n";

bool keptOff() { return !stateFolder.empty() && readStateFile(choicePath()) == off; }

} // namespace

void startToolBar() {
    std::vector<ToolButton> shown;
    for (const ButtonRow& row : buttons) shown.push_back({row.command, row.icon});
    platform().setToolBar(shown);
    editorState.toolBar = !keptOff();
    if (!editorState.toolBar) platform().showToolBar(false);
}

void toggleToolBar() {
    editorState.toolBar = !editorState.toolBar;
    platform().showToolBar(editorState.toolBar);
    SaveFile choice;
    if (stateFolder.empty() || !choice.open(choicePath(), FileKind::state)) return;
    choice.append(editorState.toolBar ? "on\n" : off);
    static_cast<void>(choice.commit());
}

bool toolBarIsShown() { return editorState.toolBar; }

} // namespace polyfab
