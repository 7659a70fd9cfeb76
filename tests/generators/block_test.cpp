// SPDX-License-Identifier: GPL-3.0-or-later
// Blocks by their faces, and the dialog that makes them.
#include "generators/block.h"
#include "mesh/stale.h"

#include "geometry/vec3.h"
#include "mesh/face_angle.h"
#include "tests/tools/tool_test.h"

namespace polyfab::test {
namespace {

using Block = ToolTest;
using Corners = std::vector<std::array<double, 3>>;

Corners cornersOf(int face) {
    Corners list;
    for (const int p : pointsOf(face)) {
        list.push_back({OB->points[p].x, OB->points[p].y, OB->points[p].z});
    }
    return list;
}

TEST_F(Block, HasSixFacesThatLookOutwardsFromEitherOrderOfTheCorners) {
    Corners first;
    for (int swapped = 0; swapped < 8; ++swapped) {
        emptyMesh();
        stale.edges = false;
        const auto make = [&](double a, double b, double c, double d, double e, double f) {
            const bool x = swapped & 1, y = swapped & 2, z = swapped & 4;
            makeBlock(*OB, x ? b : a, x ? a : b, y ? d : c, y ? c : d, z ? f : e, z ? e : f);
        };
        make(0, 1, 0, 2, 0, 3);
        ASSERT_EQ(OB->nf, 6);
        ASSERT_EQ(OB->np, 8);
        ASSERT_EQ(check(*OB), nullptr);
        ASSERT_TRUE(stale.edges);
        Corners all;
        // One face a side: the lower ones first, then the upper ones in another order of the axes.
        const Vec3 sides[] = {{-1, 0, 0}, {0, 0, -1}, {0, -1, 0}, {1, 0, 0}, {0, 0, 1}, {0, 1, 0}};
        for (int i = 0; i < 6; ++i) {
            EXPECT_EQ(dot(faceNormal(OB->faces[i]), sides[i]), 1) << i;
            EXPECT_EQ(OB->faces[i].selected, 1);
            for (const auto& corner : cornersOf(i)) {
                all.push_back(corner);
                const double at =
                    corner[0] * sides[i].x + corner[1] * sides[i].y + corner[2] * sides[i].z;
                EXPECT_EQ(at, i < 3 ? 0 : sides[i].x + 3 * sides[i].z + 2 * sides[i].y);
            }
        }
        if (swapped == 0) first = all;
        EXPECT_EQ(all, first);

        make(0, 1, 0, 2, 0, 3);
        EXPECT_EQ(OB->np, 8);
        make(1, 2, 0, 2, 0, 3); // against the side of the first
        EXPECT_EQ(OB->np, 12);
        EXPECT_EQ(OB->nf, 18);
    }
}

TEST_F(Block, FlatInOneAxisIsOneSheetAndInMoreNothing) {
    struct {
        Vec3 low, high;
        Corners corners; ///< of the only face, if there is one
    } const cases[] = {
        {{0, 0, 4}, {1, 2, 4}, {{0, 0, 4}, {0, 2, 4}, {1, 2, 4}, {1, 0, 4}}},
        {{4, 0, 0}, {4, 1, 2}, {{4, 0, 0}, {4, 0, 2}, {4, 1, 2}, {4, 1, 0}}},
        {{2, 4, 2}, {0, 4, 0}, {{0, 4, 0}, {2, 4, 0}, {2, 4, 2}, {0, 4, 2}}},
        {{1, 1, 0}, {1, 1, 5}, {}},
        {{1, 1, 1}, {1, 1, 1}, {}},
    };
    for (const auto& [low, high, corners] : cases) {
        emptyMesh();
        makeBlock(*OB, low.x, high.x, low.y, high.y, low.z, high.z);
        ASSERT_EQ(OB->nf, corners.empty() ? 0 : 1);
        EXPECT_EQ(OB->np, static_cast<int>(corners.size()));
        if (OB->nf == 1) {
            EXPECT_EQ(cornersOf(0), corners);
        }
    }
}

TEST_F(Block, IsMadeOfWhatTheDialogHoldsUnlessCancelled) {
    struct {
        DialogResult left;
        Vec3 a, b; ///< afterwards
        int faces;
        std::string group, material;
    } const cases[] = {
        {DialogResult::accept, {0.5, -2, 16}, {3, 1234570, 6}, 6, "walls", "brick"},
        {DialogResult::escape, {0.5, -2, 16}, {3, 1234570, 6}, 6, "walls", "brick"},
        {DialogResult::cancel, {1, 2, 3}, {4, 1234567, 6}, 0, "default", "default"},
    };
    const Log asked{"dialog|BLOCK|min x=1",       "dialog|BLOCK|max x=4",
                    "dialog|BLOCK|min y=2",       "dialog|BLOCK|max y=1.23457e+06",
                    "dialog|BLOCK|min z=3",       "dialog|BLOCK|max z=6",
                    "dialog|BLOCK|group=default", "dialog|BLOCK|material=default"};
    for (const auto& row : cases) {
        emptyMesh();
        workbench.settable = {Vec3{1, 2, 3}, Vec3{4, 1234567, 6}};
        shown.dialogAnswers = {
            {" 0.5 m", "3", "-2", "1.23457e+06", "0x10", "abc", "walls", "brick"}};
        shown.dialogResults = {row.left};
        shown.log.clear();
        OB->changed = 0;
        askAndMakeBlock(*OB);
        EXPECT_EQ(shown.log, asked);
        for (const auto& [is, wanted] :
             {std::pair(workbench.settable[0], row.a), {workbench.settable[1], row.b}}) {
            EXPECT_TRUE(isZero(is - wanted)) << is.x << " " << is.y << " " << is.z;
        }
        EXPECT_EQ(OB->nf, row.faces);
        EXPECT_EQ(OB->changed, 1);
        EXPECT_EQ(OB->currentGroupName(), row.group);
        EXPECT_EQ(OB->currentMaterialName(), row.material);
        EXPECT_EQ(OB->ng, 1);
        EXPECT_EQ(OB->materials[OB->curmat].color, 0U);
        for (int i = 0; i < OB->nf; ++i) EXPECT_EQ(OB->faces[i].g, OB->curgroup);
        EXPECT_FALSE(keyIsDown(key::escape));
        EXPECT_EQ(check(*OB), nullptr);
    }
}

} // namespace
} // namespace polyfab::test
