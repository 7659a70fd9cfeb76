// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/modes/modes.h"

#include "editor/editor_state.h"
#include "editor/modes/click_select.h"
#include "editor/modes/drag.h"
#include "editor/modes/face_mode.h"
#include "editor/modes/handling_modes.h"
#include "editor/modes/transform_modes.h"
#include "workbench/state.h"

#include <algorithm>
#include <array>

namespace polyfab {
namespace {

struct Mode {
    int command;      ///< the menu command that enters it
    int value;        ///< of EditorState::mode
    char axis;        ///< of EditorState::resizeAxis, for the resize modes; otherwise 0
    const char* name; ///< shown in the title
    Press press{};    ///< what the mouse does; nothing unless told
};

constexpr auto modes = std::to_array<Mode>({
    {358, defaultMode, 0, ""},
    {348, 'E', 0, "edge handling", {pressEdge}},
    {349, 'F', 0, "face handling", {pressFace}},
    {350, 'H', 0, "group handling", {pressGroup}},
    {351, 'm', 0, "move objects", {moveObjects, anyButton}},
    {352, 'M', 0, "move display", {moveDisplay, anyButton}},
    {353, 'P', 0, "vertex handling", {pressVertex}},
    {357, 'Q', 0, "set left cutoff", {setLeftCutoff, anyButton}},
    {362, 'W', 0, "set right cutoff", {setRightCutoff, anyButton}},
    {359, 's', 0, "resize objects", {resizeObjects, anyButton}},
    {365, 's', 'X', "resize selected faces in X", {resizeObjects, anyButton}},
    {367, 's', 'Y', "resize selected faces in Y", {resizeObjects, anyButton}},
    {369, 's', 'Z', "resize selected faces in Z", {resizeObjects, anyButton}},
    {363, 'S', 0, "change scale", {scaleDisplay, anyButton}},
    {361, 'T', 0, "&texture map coordinate handling"},
    {364, 600, 0, "rotate around X", {turnAboutX, anyButton}},
    {366, 601, 0, "rotate around Y", {turnAboutY, anyButton}},
    {368, 602, 0, "rotate around Z", {turnAboutZ, anyButton}},
    {1062, 632, 0, "twist around X", {twistAboutX, anyButton}},
    {1063, 633, 0, "twist around Y", {twistAboutY, anyButton}},
    {1064, 634, 0, "twist around Z", {twistAboutZ, anyButton}},
    {1040, 'h', 0, "move by graphs"},
    {1049, 584, 0, "scale by graphs"},
    {378, 1095, 0, "selecting groups by clicking the mesh", {selectGroupAt}},
    {379, 1101, 0, "selecting materials by clicking the mesh", {selectMaterialAt}},
    {381, 1104, 0, "selecting parts by clicking the mesh", {selectPartAt}},
    {380, 1108, 0, "selecting texture map areas by clicking the mesh", {selectTextureMapAreaAt}},
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

void restoreModeName() { workbench.modeName = presentMode().name; }

void modeMouse(const Event& event) { dragByMouse(event, presentMode().press); }

} // namespace polyfab
