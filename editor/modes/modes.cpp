// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/modes/modes.h"

#include "display/box.h"
#include "display/view.h"
#include "editor/editor_state.h"
#include "editor/modes/click_select.h"
#include "editor/modes/face_mode.h"
#include "editor/modes/handling_modes.h"
#include "editor/modes/point_drag.h"
#include "editor/modes/transform_modes.h"
#include "mesh/mesh.h"
#include "workbench/state.h"

#include <algorithm>
#include <array>

namespace polyfab {
namespace {

constexpr auto modes = std::to_array<Mode>({
    {358, defaultMode, 0, ""},
    {348, 'E', 0, "edge handling", handleEdges, handleEdges, handleEdges},
    {349, 'F', 0, "face handling", handleFaces, handleFaces, handleFaces},
    {350, 'H', 0, "group handling", handleGroups},
    {351, 'm', 0, "move objects", moveObjects, moveObjects, moveObjects},
    {352, 'M', 0, "move display", moveDisplay, moveDisplay, moveDisplay},
    {353, 'P', 0, "vertex handling", handleVertexes, handleVertexes, handleVertexes},
    {357, 'Q', 0, "set left cutoff", setLeftCutoff, setLeftCutoff, setLeftCutoff},
    {362, 'W', 0, "set right cutoff", setRightCutoff, setRightCutoff, setRightCutoff},
    {359, 's', 0, "resize objects", resizeObjects, resizeObjects, resizeObjects},
    {365, 's', 'X', "resize selected faces in X", resizeObjects, resizeObjects, resizeObjects},
    {367, 's', 'Y', "resize selected faces in Y", resizeObjects, resizeObjects, resizeObjects},
    {369, 's', 'Z', "resize selected faces in Z", resizeObjects, resizeObjects, resizeObjects},
    {363, 'S', 0, "change scale", scaleDisplay, scaleDisplay, scaleDisplay},
    {361, 'T', 0, "&texture map coordinate handling"},
    {364, 600, 0, "rotate around X", turnAboutX, turnAboutX, turnAboutX},
    {366, 601, 0, "rotate around Y", turnAboutY, turnAboutY, turnAboutY},
    {368, 602, 0, "rotate around Z", turnAboutZ, turnAboutZ, turnAboutZ},
    {1062, 632, 0, "twist around X", twistAboutX, twistAboutX, twistAboutX},
    {1063, 633, 0, "twist around Y", twistAboutY, twistAboutY, twistAboutY},
    {1064, 634, 0, "twist around Z", twistAboutZ, twistAboutZ, twistAboutZ},
    {1040, 'h', 0, "move by graphs"},
    {1049, 584, 0, "scale by graphs"},
    {378, 1095, 0, "selecting groups by clicking the mesh", selectGroupAt},
    {379, 1101, 0, "selecting materials by clicking the mesh", selectMaterialAt},
    {381, 1104, 0, "selecting parts by clicking the mesh", selectPartAt},
    {380, 1108, 0, "selecting texture map areas by clicking the mesh", selectTextureMapAreaAt},
});

/// From the press of the first button until all are up again, or until something ends it before.
struct ModeDrag {
    bool runs = false;
    View view; ///< at the press
    Box box;
};

ModeDrag modeDrag;

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

void modeMouse(const Event& event) {
    constexpr unsigned buttons = button::left | button::right;
    const unsigned now = editorState.buttons & buttons;
    const unsigned before = editorState.buttons >> 2 & buttons;
    if (before == 0 && now != 0) modeDrag = {true, view, box};
    if (!modeDrag.runs) return;
    modeDrag.runs = now != 0;
    const Mode& mode = presentMode();
    const auto handler = (now & ~before) != 0 ? mode.press : now != 0 ? mode.drag : mode.release;
    if (handler != nullptr) handler(event);
}

bool dragRuns() { return modeDrag.runs; }

void endDrag() {
    endPointDrag();
    modeDrag.runs = false;
}

void cancelDrag() {
    if (!modeDrag.runs) return;
    modeDrag.runs = false;
    cancelPointDrag();
    view = modeDrag.view;
    box = modeDrag.box;
    applyView();
}

void resetDrags() {
    forgetPointDrag();
    modeDrag = ModeDrag();
}

} // namespace polyfab
