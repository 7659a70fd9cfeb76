// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/click_select.h"

#include "display/options.h"
#include "display/view.h"
#include "editor/modes.h"
#include "editor/state.h"
#include "editor/window.h"
#include "tests/support/mesh_fixture.h"

namespace polyfab {
namespace {

/// A cube in both panes, its faces in two groups, materials, parts and areas by turns.
class ClickSelect : public test::MeshTest {
  protected:
    ClickSelect() {
        resetEditorState();
        displayOptions = DisplayOptions();
        shown.size = {401, 200};
        handleEvent({.kind = EventKind::create});
        test::addCube();
        resizeView(shown.size);
        resetView();
        OB->addGroup("g");
        OB->addMaterial(0, "m");
        OB->addPart();
        OB->addTextureMapArea();
        for (int f = 0; f < 6; ++f) {
            Face& face = OB->faces[f];
            face.g = static_cast<std::int16_t>(f & 1);
            face.mat = static_cast<std::int16_t>(f < 3);
            face.prt = static_cast<std::int16_t>(f != 1);
            face.tma = static_cast<std::int16_t>(f == 1 || f == 5);
        }
    }
    ~ClickSelect() override {
        resetEditorState();
        displayOptions = DisplayOptions();
    }

    void mouse(int x, int y, unsigned buttons) {
        handleEvent({.kind = EventKind::mouse, .x = x, .y = y, .buttons = buttons});
    }
    std::vector<int> selectedFaces() const {
        std::vector<int> list;
        for (int f = 0; f < OB->nf; ++f) {
            if (OB->faces[f].q != nullptr && OB->faces[f].selected != 0) list.push_back(f);
        }
        return list;
    }
    /// The `selected` of both groups, materials, parts and areas.
    std::array<std::array<unsigned, 2>, 4> entries() const {
        return {{{OB->groups[0].selected, OB->groups[1].selected},
                 {OB->materials[0].selected, OB->materials[1].selected},
                 {OB->parts[0].selected, OB->parts[1].selected},
                 {OB->tmas[0].selected, OB->tmas[1].selected}}};
    }
};

TEST_F(ClickSelect, APressSelectsTheWholeThatTheFaceIsIn) {
    struct Row {
        int command;
        std::size_t table;
        int x;                  ///< where the press is
        std::vector<int> faces; ///< what it selects
        std::array<unsigned, 2> picked;
    };
    // The left pane shows face 1 in front, the right one face 5. Face 3 is deleted.
    const Row rows[] = {
        {378, 0, 100, {1, 5}, {0, 1}},       {379, 1, 100, {0, 1, 2}, {0, 1}},
        {381, 2, 100, {1}, {1, 0}},          {380, 3, 100, {1, 5}, {0, 1}},
        {378, 0, 300, {1, 5}, {0, 1}},       {379, 1, 300, {4, 5}, {1, 0}},
        {381, 2, 300, {0, 2, 4, 5}, {0, 1}}, {380, 3, 300, {1, 5}, {0, 1}},
    };
    OB->faces[3].q = nullptr;
    for (const Row& row : rows) {
        for (int f = 0; f < 6; ++f) OB->faces[f].selected = f % 2 == 0;
        OB->groups[0].selected = OB->groups[1].selected = 1;
        OB->materials[0].selected = OB->materials[1].selected = 1;
        OB->parts[0].selected = OB->parts[1].selected = 1;
        OB->tmas[0].selected = OB->tmas[1].selected = 1;
        const bool before = OB->changed != 0;
        auto expected = entries();
        expected[row.table] = row.picked;
        enterMode(row.command);
        stale.points = true;
        shown.paintRequests = 0;
        mouse(row.x, 90, button::left);
        EXPECT_EQ(selectedFaces(), row.faces) << row.command << ' ' << row.x;
        EXPECT_EQ(entries(), expected) << row.command << ' ' << row.x;
        EXPECT_EQ(OB->faces[3].selected, 0);
        EXPECT_GE(shown.paintRequests, 1);
        EXPECT_EQ(OB->changed != 0, before);
        mouse(row.x, 90, 0);
    }
}

TEST_F(ClickSelect, WhatIsNoPressOnAFaceDoesNothing) {
    OB->faces[4].selected = 0;
    const std::vector<int> faces = selectedFaces();
    const auto before = entries();
    for (const int command : {378, 379, 381, 380}) {
        enterMode(command);
        mouse(100, 90, 0);
        mouse(100, 90, button::right); // another button
        mouse(100, 90, 0);
        mouse(200, 90, button::left); // on the line between the panes
        mouse(100, 90, button::left); // a drag onto a face
        mouse(100, 90, 0);
        mouse(-7, 90, button::left);
        mouse(-7, 90, 0);
        EXPECT_EQ(selectedFaces(), faces) << command;
        EXPECT_EQ(entries(), before) << command;
    }
}

} // namespace
} // namespace polyfab
