// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/modes/modes.h"

#include "editor/editor_state.h"
#include "editor/modes/click_select.h"
#include "editor/modes/drag.h"
#include "editor/modes/face_mode.h"
#include "editor/modes/handling_modes.h"
#include "editor/modes/new_face.h"
#include "editor/modes/rectangle_mode.h"
#include "editor/modes/transform_modes.h"
#include "workbench/state.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace polyfab {
namespace {

struct Mode {
    int command;      ///< the menu command that enters it
    int value;        ///< of EditorState::mode
    char axis;        ///< of EditorState::resizeAxis, for the resize modes; otherwise 0
    const char* name; ///< shown in the title
    const char* help; ///< what the mouse does, in the status line
    Press press{};    ///< the same for the editor; nothing unless told
    Changed changes = Changed::anything; ///< a drag at most, as long as undo calls it as press does
};

constexpr auto modes = std::to_array<Mode>({
    {358, defaultMode, 0, "",
     "wheel: zoom - middle drag: move the view, with Shift turn it - right click: menu"},
    {348,
     'E',
     0,
     "edge handling",
     "click: current edge - drag: move it - Delete: join its two faces - Esc: take back",
     {pressEdge, button::left, "pick edge"},
     Changed::current},
    {349,
     'F',
     0,
     "face handling",
     "click: current face - Shift+click: select or not - drag between vertexes: split - Delete: "
     "delete",
     {pressFace, button::left, "pick face"},
     Changed::current},
    {350,
     'H',
     0,
     "group handling",
     "click: make its group current - Ctrl+click: put the face into the current group",
     {pressGroup, button::left, "pick group"},
     Changed::current},
    {351,
     'm',
     0,
     "move objects",
     "left drag: move the selected faces in x, y - right drag: in z, y - Esc: take back",
     {moveObjects, anyButton, "move faces"}},
    {352,
     'M',
     0,
     "move display",
     "left drag: move the picture in x, y - right drag: in z, y - Esc: take back",
     {moveDisplay, anyButton}},
    {353,
     'P',
     0,
     "vertex handling",
     "click: current vertex - drag: move, Ctrl at the end: weld - Ctrl+click, Enter: new face - "
     "Esc: take back",
     {pressVertex, button::left, "pick vertex"}},
    {357,
     'Q',
     0,
     "set left cutoff",
     "left drag: the box's left cut-offs in x, y - right drag: in z, y - Esc: take back",
     {setLeftCutoff, anyButton}},
    {362,
     'W',
     0,
     "set right cutoff",
     "left drag: the box's right cut-offs in x, y - right drag: in z, y - Esc: take back",
     {setRightCutoff, anyButton}},
    {359,
     's',
     0,
     "resize objects",
     "drag right or up: larger, left or down: smaller; 100 pixels: twice - Esc: take back",
     {resizeObjects, anyButton, "resize faces"}},
    {365,
     's',
     'X',
     "resize selected faces in X",
     "drag right or up: longer in x, left or down: shorter - Esc: take back",
     {resizeObjects, anyButton, "resize faces in x"}},
    {367,
     's',
     'Y',
     "resize selected faces in Y",
     "drag right or up: longer in y, left or down: shorter - Esc: take back",
     {resizeObjects, anyButton, "resize faces in y"}},
    {369,
     's',
     'Z',
     "resize selected faces in Z",
     "drag right or up: longer in z, left or down: shorter - Esc: take back",
     {resizeObjects, anyButton, "resize faces in z"}},
    {363,
     'S',
     0,
     "change scale",
     "drag right or up: larger, left or down: smaller; 100 pixels: twice - Esc: take back",
     {scaleDisplay, anyButton}},
    {361, 'T', 0, "&texture map coordinate handling", ""},
    {364,
     600,
     0,
     "rotate around X",
     "drag right or down: turn the view or the selected faces about x - Esc: take back",
     {turnAboutX, anyButton, "rotate faces about x"}},
    {366,
     601,
     0,
     "rotate around Y",
     "drag right or down: turn the view or the selected faces about y - Esc: take back",
     {turnAboutY, anyButton, "rotate faces about y"}},
    {368,
     602,
     0,
     "rotate around Z",
     "drag right or down: turn the view or the selected faces about z - Esc: take back",
     {turnAboutZ, anyButton, "rotate faces about z"}},
    {1062,
     632,
     0,
     "twist around X",
     "drag right or down: twist the selected faces about x between the cut-offs - Esc: take back",
     {twistAboutX, anyButton, "twist faces about x"}},
    {1063,
     633,
     0,
     "twist around Y",
     "drag right or down: twist the selected faces about y between the cut-offs - Esc: take back",
     {twistAboutY, anyButton, "twist faces about y"}},
    {1064,
     634,
     0,
     "twist around Z",
     "drag right or down: twist the selected faces about z between the cut-offs - Esc: take back",
     {twistAboutZ, anyButton, "twist faces about z"}},
    {1040, 'h', 0, "move by graphs", ""},
    {1049, 584, 0, "scale by graphs", ""},
    {378,
     1095,
     0,
     "selecting groups by clicking the mesh",
     "click: select a face's group, and nothing else - Shift: add it - Ctrl: take it away",
     {selectGroupAt, button::left, "select group"},
     Changed::facesOnly},
    {379,
     1101,
     0,
     "selecting materials by clicking the mesh",
     "click: select a material, and nothing else - Shift: add it - Ctrl: take it away",
     {selectMaterialAt, button::left, "select material"},
     Changed::facesOnly},
    {381,
     1104,
     0,
     "selecting parts by clicking the mesh",
     "click: select a part, and nothing else - Shift: add it - Ctrl: take it away",
     {selectPartAt, button::left, "select part"},
     Changed::facesOnly},
    {380,
     1108,
     0,
     "selecting texture map areas by clicking the mesh",
     "click: select an area, and nothing else - Shift: add it - Ctrl: take it away",
     {selectTextureMapAreaAt, button::left, "select texture map area"},
     Changed::facesOnly},
    {selectByRectangle,
     1110,
     0,
     "select by rectangle",
     "drag: select what is inside - right drag: what it touches - Shift: add - Ctrl: take away - "
     "Esc: take back",
     {dragRectangle, anyButton},
     Changed::facesOnly},
});

const Mode& presentMode() {
    const auto row = std::find_if(modes.begin(), modes.end(), [](const Mode& mode) {
        return mode.value == editorState.mode
               && (mode.value != 's' || mode.axis == editorState.resizeAxis);
    });
    return row == modes.end() ? modes.front() : *row;
}

} // namespace

void enterMode(int command) {
    endDrag();
    dropNewFace();
    for (const Mode& mode : modes) {
        if (mode.command != command) continue;
        editorState.mode = mode.value;
        workbench.modeName = mode.name;
        // Only the modes that resize, objects or display, say anything about the axis.
        if (mode.value == 's' || mode.value == 'S') editorState.resizeAxis = mode.axis;
        if (mode.value == 'E') dropStaleEdge();
    }
    updateTitle();
}

bool entersMode(int command) {
    return std::any_of(modes.begin(), modes.end(),
                       [=](const Mode& mode) { return mode.command == command; });
}

int presentModeCommand() { return presentMode().command; }

const char* modeHelpOf(int command) {
    const auto row = std::find_if(modes.begin(), modes.end(),
                                  [=](const Mode& mode) { return mode.command == command; });
    return row == modes.end() ? "" : row->help;
}

bool modeUsesRightButton() {
    const Press& press = presentMode().press;
    return press.begin != nullptr && (press.buttons & button::right) != 0;
}

std::string modeHelp() {
    std::string help = presentMode().help;
    constexpr std::string_view either = "the view or the selected faces";
    const std::size_t at = help.find(either);
    const char* const turned = turnOptions.view ? "the view" : "the selected faces";
    return at == std::string::npos ? help : help.replace(at, either.size(), turned);
}

Changed changedByMode() {
    const Mode& mode = presentMode();
    const bool asNamed = drags.step == std::string_view(mode.press.step);
    return asNamed ? mode.changes : Changed::anything;
}

void restoreModeName() { workbench.modeName = presentMode().name; }

void modeMouse(const Event& event) { dragByMouse(event, presentMode().press); }

} // namespace polyfab
