// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/lists/subview.h"

#include "editor/editor_state.h"
#include "editor/lists/name_list.h"
#include "editor/menus.h"
#include "editor/modes/modes.h"
#include "mesh/stale.h"
#include "workbench/state.h"

#include <algorithm>
#include <iterator>

namespace polyfab {
namespace {

struct SubviewRow {
    int number;
    const char* word; ///< stands in the title in place of the mode
    const char* bar;
    void (*opened)();
    const char* (*handle)(const Event&);
    void (*closed)(int number); ///< applies the outcome to the mesh
};

constexpr SubviewRow rows[] = {
    {subview::groups, "groups", "GMENUMENU", openNameList, handleInNameList, applyNameList},
    {subview::textureMapAreas, "texture map areas", "MENUMENU", openNameList, handleInNameList,
     applyNameList},
    {subview::parts, "parts", "MENUMENU", openNameList, handleInNameList, applyNameList},
    {subview::materials, "materials", "MENUMENU", openNameList, handleInNameList, applyNameList},
};

const SubviewRow& rowOf(int number) {
    return *std::find_if(std::begin(rows), std::end(rows),
                         [number](const SubviewRow& row) { return row.number == number; });
}

} // namespace

void openSubview(int number) {
    const SubviewRow& row = rowOf(number);
    editorState.subview = number;
    workbench.modeName = row.word;
    row.opened();
    showMenuBar(row.bar);
    updateTitle();
    platform().requestPaint();
}

void closeSubview() { editorState.subview = 0; }

const char* handleInSubview(const Event& event) {
    const SubviewRow& row = rowOf(editorState.subview);
    workbench.modeName = row.word;
    const char* const step = row.handle(event);
    if (editorState.subview != 0) return step;
    row.closed(row.number);
    restoreModeName();
    showMenuBar("POLYFAB");
    platform().setScrollBar({});
    updateTitle();
    stale.picture = true; // the window still shows the sub-view
    platform().requestPaint();
    return step;
}

} // namespace polyfab
