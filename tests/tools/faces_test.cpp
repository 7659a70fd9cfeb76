// SPDX-License-Identifier: GPL-3.0-or-later
// Deletion of faces, twins, faces without area, facts, and names made of numbers and colors.
#include "mesh/face_area.h"
#include "mesh/stale.h"
#include "tests/tools/tool_test.h"
#include "tools/color_groups.h"
#include "tools/delete_faces.h"
#include "tools/mesh_facts.h"
#include "tools/names_from_numbers.h"
#include "tools/same_corners.h"

#include <cmath>
#include <set>

namespace polyfab::test {
namespace {

using DeleteFaces = ToolTest;

TEST_F(DeleteFaces, OnlySelectedFacesAloneInTheirPartGoUnasked) {
    addCube();
    for (int i = 0; i < 3; ++i) OB->addPart();
    const std::int16_t parts[] = {0, 0, 1, 2, 3, 3};
    for (int i = 0; i < 6; ++i) OB->faces[i].prt = parts[i];
    OB->faces[1].selected = OB->faces[3].selected = 0;
    OB->faces[5].q = nullptr; // counts for nothing
    deletePartsOfOneFace(*OB);
    EXPECT_EQ(liveFaces(), (Numbers{0, 1, 3}));
    EXPECT_TRUE(shown.log.empty());
}

using Facts = ToolTest;

TEST_F(Facts, AreToldOfNothingAndOfWhatNoNumberHolds) {
    tellFacts(*OB);
    EXPECT_EQ(shown.log.back().find("genus"), std::string::npos);
    EXPECT_TRUE(shown.log.back().ends_with("area: 0\nvolume: 0")) << shown.log.back();
    addCube();
    for (int i = 0; i < OB->np; ++i) moveTo(OB->points[i], worldPosition(OB->points[i]) * 1e200);
    tellFacts(*OB);
    EXPECT_TRUE(
        shown.log.back().ends_with("genus: 0\narea: too large to tell\nvolume: too large to tell"))
        << shown.log.back();
}

using SameCorners = ToolTest;

TEST_F(SameCorners, AllTwinsAreFoundOneByOne) {
    const auto points = [](int face) {
        const Numbers list = pointsOf(face);
        return std::set<int>(list.begin(), list.end());
    };
    for (int round = 0; round < 2000; ++round) {
        fillWithParts(6, 12, 5);
        OB->curface = OB->nf - 1;
        const Numbers selected = liveFaces(true);
        Numbers kept = liveFaces();
        Numbers alone;
        for (const int face : selected) {
            const auto isTwin = [&](int other) {
                return other != face && points(other) == points(face);
            };
            if (std::none_of(selected.begin(), selected.end(), isTwin)) alone.push_back(face);
            const auto end = std::find(selected.begin(), selected.end(), face);
            if (std::any_of(selected.begin(), end, isTwin)) std::erase(kept, face);
        }
        const auto twins = std::to_string(selected.size() - alone.size());
        const auto removed = liveFaces().size() - kept.size();

        stale.edges = false;
        unselectFacesOnSamePoints(*OB);
        ASSERT_EQ(stale.edges, twins != "0");
        ASSERT_EQ(shown.log.back(), "message||" + twins + " such faces found");
        ASSERT_EQ(liveFaces(true), alone) << round;
        for (const int face : selected) OB->faces[face].selected = 1;
        removeFacesOnSamePoints(*OB);
        ASSERT_EQ(shown.log.back(), "message||I have removed " + std::to_string(removed)
                                        + (removed == 1 ? " face" : " faces"));
        ASSERT_EQ(liveFaces(), kept) << round;
        const bool stays = removed == 0 || kept.back() == OB->nf - 1;
        ASSERT_EQ(OB->curface, stays ? OB->nf - 1 : -1);
    }
}

using FaceArea = ToolTest;

TEST_F(FaceArea, IsNoneForLinesAndPointsOnly) {
    struct {
        std::vector<Vec3> corners;
        bool flat;
    } const cases[] = {
        {{{7, 7, 7}, {7, 7, 7}, {7, 7, 7}}, true},
        {{{0, 0, 0}, {1, 0, 0}, {0.5, 1e-9, 0}}, false},
        {{{0, 0, 0}, {1e-200, 0, 0}, {0, 1e-200, 0}}, false},
        {{{0, 0, 0}, {1e200, 0, 0}, {0, 0, 1e200}}, false},
        {{{1e6, 1e6, 0}, {1e6 + 1e-3, 1e6, 0}, {1e6, 1e6 + 1e-3, 0}}, false},
        {{{0, 0, 0}, {1, 1, 0}, {1, 0, 0}, {0, 1, 0}}, true}, // a bow whose halves cancel out
        {{{0, 0, 0}, {1, 0, 0}, {std::nan(""), 1, 0}}, false},
    };
    for (const auto& row : cases)
        EXPECT_EQ(hasNoArea(addFaceAt(row.corners)), row.flat) << &row - cases;
    for (int i = 0; i < 1000; ++i) { // lines, rounded
        const double far = std::pow(10, random.below(7));
        const auto at = [&](double along) {
            return Vec3{far + along / 3, along / 7 - far, along / 11};
        };
        const Face& line =
            addFaceAt({at(0), at(random.below(99)), at(1 + random.below(99)), at(100)});
        EXPECT_TRUE(hasNoArea(line)) << i;
    }
}

using NamesFromNumbers = ToolTest;

TEST_F(NamesFromNumbers, AreRefusedWhenTheyAreTooMany) {
    addCube();
    for (int i = 0; i < 6; ++i) OB->faces[i].tma = static_cast<std::int16_t>(i / 3);
    OB->addTextureMapArea();
    OB->faces[0].mat = static_cast<std::int16_t>(OB->addMaterial(0x123456, "mine"));
    makePartsIntoMaterials(*OB);
    EXPECT_EQ(OB->materials[OB->faces[5].mat].color, 0x123456U); // of the first face in the part
    while (OB->ng < maxIndexed - 1) OB->addGroup("g");
    makeAreasIntoGroups(*OB); // two of them
    EXPECT_EQ(shown.log, (Log{"note|new materials: 1",
                              "message!|too many names|a mesh can have at most 32767 groups"}));
    EXPECT_EQ(OB->ng, maxIndexed - 1);
    EXPECT_EQ(OB->faces[2].g, 0);
    --OB->ng;
    makeAreasIntoGroups(*OB);
    EXPECT_EQ(OB->faces[5].g, maxIndexed - 1);
}

using ColorGroups = ToolTest;

TEST_F(ColorGroups, ThatAreThereNeedNoRoom) {
    addCube();
    OB->faces[0].mat = static_cast<std::int16_t>(OB->addMaterial(0x123456, "one"));
    for (int i = 1; i < 6; ++i) OB->faces[i].mat = OB->faces[0].mat;
    OB->faces[5].mat = static_cast<std::int16_t>(OB->addMaterial(0xABCDEF, "two"));
    OB->addGroup("color_123456");
    while (OB->ng < maxIndexed) OB->addGroup("g");
    groupByColor(*OB);
    EXPECT_EQ(shown.log.back(), "message!|too many names|a mesh can have at most 32767 groups");
    --OB->ng;
    groupByColor(*OB);
    EXPECT_EQ(shown.log.back(), "note|2 colors found");
    EXPECT_EQ(OB->faces[5].g, maxIndexed - 1);
    groupByColor(*OB); // without room
    EXPECT_EQ(shown.log.back(), "note|2 colors found");
}

} // namespace
} // namespace polyfab::test
