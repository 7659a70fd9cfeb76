// SPDX-License-Identifier: GPL-3.0-or-later
// What entering a mode leaves in the state and in the title, the life of a drag in any mode, and
// the modes that select by a click.
#include "editor/editor_state.h"
#include "tests/editor/window_fixture.h"

#include <map>

namespace polyfab::test {
namespace {

constexpr int transformModes[] = {351, 352, 357, 359, 362,  363,  364, 365,
                                  366, 367, 368, 369, 1062, 1063, 1064};

/// The entries that are picked in the tables of groups, materials, parts and areas.
std::array<Numbers, 4> picks() {
    return {selectedOf(OB->groups, 2), selectedOf(OB->materials, 2), selectedOf(OB->parts, 2),
            selectedOf(OB->tmas, 2)};
}

class Modes : public WindowEvents {
  protected:
    Modes() {
        addCube();
        OB->addNormal(0, 1, 0);
        for (int k = 0; k < 4; ++k) OB->faces[0].q[k].d = OB->normals;
        box = {{200, 201, 202}, {303, 304, 305}};
        OB->changed = 0;
    }
    /// All that a drag may change.
    static std::string everything() {
        std::string text = dump() + (OB->changed ? "changed" : "");
        const auto add = [&](const auto& record) {
            text.append(reinterpret_cast<const char*>(&record), sizeof record);
        };
        add(view.rotation), add(view.scale), add(view.offset), add(box);
        return text;
    }
};

TEST_F(Modes, EachHasItsValueAndNameAndOnlyThoseThatResizeSetTheAxis) {
    struct Row {
        int command, value;
        std::string name;
    };
    std::vector<Row> rows = {
        {348, 'E', "edge handling"},    {349, 'F', "face handling"},
        {350, 'H', "group handling"},   {351, 'm', "move objects"},
        {352, 'M', "move display"},     {353, 'P', "vertex handling"},
        {357, 'Q', "set left cutoff"},  {358, ' ', ""},
        {359, 's', "resize objects"},   {361, 'T', "&texture map coordinate handling"},
        {362, 'W', "set right cutoff"}, {363, 'S', "change scale"},
        {364, 600, "rotate around X"},  {365, 's', "resize selected faces in X"},
        {366, 601, "rotate around Y"},  {367, 's', "resize selected faces in Y"},
        {368, 602, "rotate around Z"},  {369, 's', "resize selected faces in Z"},
        {1040, 'h', "move by graphs"},  {1049, 584, "scale by graphs"},
        {1062, 632, "twist around X"},  {1063, 633, "twist around Y"},
        {1064, 634, "twist around Z"}};
    for (const Row& row : {Row{378, 1095, "groups"},
                           {379, 1101, "materials"},
                           {381, 1104, "parts"},
                           {380, 1108, "texture map areas"}}) {
        rows.push_back({row.command, row.value, "selecting " + row.name + " by clicking the mesh"});
    }
    const std::map<int, char> axes = {{359, 0}, {363, 0}, {365, 'X'}, {367, 'Y'}, {369, 'Z'}};
    for (const Row& row : rows) {
        editorState.resizeAxis = '?';
        enterMode(row.command);
        EXPECT_EQ(editorState.mode, row.value);
        const auto axis = axes.find(row.command);
        EXPECT_EQ(editorState.resizeAxis, axis == axes.end() ? '?' : axis->second);
        EXPECT_EQ(shown.windowTitle, "polyfab [] " + row.name);
        command(278); // a list, after which the mode goes on under its name
        key(key::escape);
        EXPECT_EQ(shown.windowTitle, "polyfab [] " + row.name);
    }
}

TEST_F(Modes, EdgeHandlingDropsAnEdgeThatIsGone) {
    OB->faces[2].q = nullptr;
    for (const auto& [face, corner] : {std::pair{0, 3}, {6, 0}, {2, 0}, {0, 4}}) {
        workbench.currentEdgeFace = face;
        workbench.currentEdgeCorner = corner;
        command(348);
        EXPECT_EQ(workbench.currentEdgeFace, corner == 3 ? 0 : -1);
    }
}

TEST_F(Modes, EscapePutsEverythingBackAndTheRestOfTheDragDoesNothing) {
    // Some attitude and places that rounding does not leave alone.
    turnView(0, 0.4, true);
    turnView(1, 0.7, true);
    panView({1.1, 2.3, 3.7});
    for (const bool turnsView : {true, false}) {
        turnOptions.view = turnsView;
        for (const int mode : transformModes) {
            command(mode);
            const std::string before = everything();
            for (const unsigned held : {button::left, button::right}) {
                for (const Spot& spot : {Spot{300, 200}, {350, 240}}) mouse(spot, held);
                EXPECT_NE(everything(), before) << mode;
                key(key::escape);
                drag(400, 260, 10, 10, held);
                EXPECT_EQ(everything(), before) << mode;
            }
        }
    }
    command(351);
    drag(300, 200, 50, 50, button::left); // the next drag works
    key(key::escape);                     // nothing runs: nothing to put back
    EXPECT_EQ(OB->changed, 1);
}

TEST_F(Modes, OtherEventsEndADragAndKeepWhatItDid) {
    const Event events[] = {{.kind = EventKind::deactivate},
                            {.kind = EventKind::resize},
                            {.kind = EventKind::command, .command = 352},
                            {.kind = EventKind::drop}};
    for (const Event& event : events) {
        command(351);
        OB->changed = 0;
        for (const int x : {300, 350}) mouse(x, 200, button::left);
        EXPECT_EQ(OB->changed, 0);
        handleEvent(event);
        EXPECT_EQ(OB->changed, 1);
        const std::string then = everything();
        for (const unsigned held : {button::left, 0U}) mouse(400, 200, held);
        key(key::escape); // too late
        EXPECT_EQ(everything(), then);
    }
}

TEST_F(Modes, ASecondButtonJoinsTheDrag) {
    command(351);
    for (const int x : {300, 310}) mouse(x, 200, button::left);
    for (const int x : {310, 330}) mouse(x, 200, button::left | button::right);
    for (const int x : {330, 370}) mouse(x, 200, button::left);
    expectNear(point(0), {-0.5, -1, -1.2});
}

TEST_F(Modes, APressSelectsTheWholeThatTheFaceIsIn) {
    OB->faces[3].q = nullptr;
    OB->addGroup("g");
    OB->addMaterial(0, "m");
    OB->addPart();
    OB->addTextureMapArea();
    for (int f = 0; f < 6; ++f) {
        Face& face = OB->faces[f];
        face.g = f % 2 != 0;
        face.mat = f < 3;
        face.prt = f != 1;
        face.tma = f == 1 || f == 5;
    }
    OB->changed = 0;
    constexpr Spot left{255, 255}, right{513 + 255, 255}, line{512, 255}, outside{-7, 255};
    constexpr std::array fields = {&Face::g, &Face::mat, &Face::prt, &Face::tma};
    constexpr std::array modes = {378, 379, 381, 380};
    for (std::size_t table = 0; table < fields.size(); ++table) {
        const auto field = fields[table];
        SCOPED_TRACE(modes[table]);
        command(modes[table]);
        for (const auto& [spot, clicked] : {std::pair(left, 1), {right, 5}}) {
            const Numbers before = {0, 2, 4};
            select(before);
            for (const int i : {0, 1}) {
                OB->materials[i].selected = OB->groups[i].selected = 1;
                OB->parts[i].selected = OB->tmas[i].selected = 1;
            }
            auto expected = picks();
            // What is no press of the left button on a face does nothing.
            mouse(spot, button::right);
            mouse(spot, 0);
            for (const Spot& off : {line, outside}) drag(off, spot);
            EXPECT_EQ(selected(), before);
            EXPECT_EQ(picks(), expected);
            click(spot);
            const int whole = OB->faces[clicked].*field;
            for (int f = 0; f < 6; ++f) {
                EXPECT_EQ(OB->faces[f].selected != 0, f != 3 && OB->faces[f].*field == whole);
            }
            expected[table] = {whole};
            EXPECT_EQ(picks(), expected);
            EXPECT_EQ(OB->changed, 0);
        }
    }
}

} // namespace
} // namespace polyfab::test
