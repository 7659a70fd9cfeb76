// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/duplicate.h"

#include "display/view.h"
#include "mesh/edges.h"
#include "tests/tools/tool_test.h"
#include "tools/delete_faces.h"

#include <algorithm>
#include <map>

namespace polyfab {
namespace {

using Log = std::vector<std::string>;

const std::string done = "message||I have duplicated the selected faces like you told me to";

class Duplicate : public test::ToolTest {
  protected:
    /// Moves the points of the selected faces, as a drag does.
    void moveSelected(double z) {
        OB->markPointsOnSelected();
        for (int i = 0; i < OB->np; ++i) {
            if (OB->points[i].onselected) OB->points[i].z += z;
        }
    }
};

TEST_F(Duplicate, TheCopyOfASquareIsSelectedAndStandsOnItsOwnPoints) {
    for (int i = 0; i < 5; ++i) OB->addPoint(i & 1, i / 2, i, false);
    OB->addNormal(0, 0, 1);
    OB->addTexCoord(0.5, 0.25);
    Face* const face = test::addFace({4, 0, 1, 3});
    face->q[1] = {face->q[1].p, OB->normals, OB->texcoords, 2, 0};
    OB->changed = 0;
    stale.edges = false;
    duplicateSelected(*OB);
    EXPECT_EQ(shown.log, Log{done});
    EXPECT_EQ(OB->np, 9); // point 2 is on no face
    EXPECT_EQ(test::pointsOf(0), (std::vector<int>{4, 0, 1, 3}));
    EXPECT_EQ(test::pointsOf(1), (std::vector<int>{8, 5, 6, 7}));
    EXPECT_EQ(OB->faces[1].q[1].d, OB->normals);
    EXPECT_EQ(OB->faces[1].q[1].t, OB->texcoords);
    EXPECT_EQ(OB->points[7].sz, OB->points[3].sz);
    EXPECT_EQ(test::liveFaces(true), std::vector<int>{1});
    EXPECT_TRUE(OB->changed && stale.edges);
}

TEST_F(Duplicate, WithNothingSelectedItSaysSo) {
    test::addCube();
    for (int i = 0; i < 6; ++i) OB->faces[i].selected = 0;
    OB->changed = 0;
    duplicateSelectedJoined(*OB);
    EXPECT_EQ(shown.log, Log{"message||I have no selected faces to duplicate"});
    EXPECT_EQ(OB->nf, 6);
    EXPECT_EQ(OB->changed, 0);
}

TEST_F(Duplicate, MoreThanCanBeCountedIsRefused) {
    test::addCube();
    const int corners = std::exchange(OB->nq, INT32_MAX - 20);
    for (auto* const tool : {duplicateSelected, duplicateSelectedJoined}) {
        shown.log.clear();
        tool(*OB);
        EXPECT_EQ(shown.log.size(), 1U);
        EXPECT_NE(shown.log.front(), done);
        EXPECT_EQ(OB->nq, INT32_MAX - 20);
    }
    OB->nq = corners;
    EXPECT_EQ(OB->np, 8);
    EXPECT_EQ(test::liveFaces(true).size(), 6U);
    EXPECT_EQ(check(*OB), nullptr);
}

TEST_F(Duplicate, ATopPulledOutOfACubeMakesASoundTower) {
    test::addCube();
    for (int i = 0; i < 6; ++i) OB->faces[i].selected = i == 1; // the one at z = 1
    duplicateSelectedJoined(*OB);
    EXPECT_EQ(OB->nf, 6 + 1 + 4);
    EXPECT_EQ(test::liveFaces(true), std::vector<int>{6});
    // Face 1 is 4 5 7 6, its copy 8 9 11 10; the first wall runs the edge of the copy backwards.
    EXPECT_EQ(test::pointsOf(7), (std::vector<int>{9, 8, 4, 5}));
    moveSelected(2);
    deleteFaces(*OB, [](const Face& face) { return &face == OB->faces + 1; });
    checkEdges(*OB, false, false, false);
    for (int c = 0; c < OB->nq; ++c) EXPECT_EQ(OB->corners[c].edgeuse, 2); // closed, none is bad
    double volume = 0; // of the tetrahedra from the origin to fans: outside is outside
    for (const int f : test::liveFaces()) {
        const FaceCorner* const q = OB->faces[f].q;
        for (int k = 2; k < OB->faces[f].n; ++k) {
            const Point &a = *q[0].p, &b = *q[k - 1].p, &c = *q[k].p;
            volume += (a.x * (b.y * c.z - b.z * c.y) + a.y * (b.z * c.x - b.x * c.z)
                       + a.z * (b.x * c.y - b.y * c.x))
                      / 6;
        }
    }
    EXPECT_DOUBLE_EQ(volume, 16);
}

TEST_F(Duplicate, CopiesAndWallsAreThoseOfThePlainRule) {
    int wallsSeen = 0;
    for (int round = 0; round < 1000; ++round) {
        fillWithParts(1 + random.below(9), 1 + random.below(8), 6);
        const bool join = round % 2 != 0;
        const std::vector<int> chosen = test::liveFaces(true);
        auto faces = test::describe();
        const auto before = faces;
        std::vector<std::pair<int, int>> sides;
        std::set<int> used;
        std::size_t live = 0;
        for (const int face : test::liveFaces()) {
            if (OB->faces[face].selected) faces.push_back(before[live]);
            ++live;
        }
        for (const int face : chosen) {
            const std::vector<int> points = test::pointsOf(face);
            used.insert(points.begin(), points.end());
            for (std::size_t k = 0; k < points.size(); ++k) {
                const int next = points[(k + 1) % points.size()];
                if (points[k] != next) sides.push_back(std::minmax({points[k], next}));
            }
        }
        const auto onBorder = [&](const auto& side) {
            return join && std::count(sides.begin(), sides.end(), side) == 1;
        };
        const auto walls = static_cast<int>(std::count_if(sides.begin(), sides.end(), onBorder));
        wallsSeen += walls;
        const int slots = OB->nf;
        const int points = OB->np;
        (join ? duplicateSelectedJoined : duplicateSelected)(*OB);

        ASSERT_EQ(check(*OB), nullptr);
        const auto copies = static_cast<int>(chosen.size());
        ASSERT_EQ(OB->nf, slots + copies + walls);
        ASSERT_EQ(OB->np, points + static_cast<int>(used.size()));
        std::map<int, int> copyOf;
        for (int i = 0; i < copies; ++i) {
            const std::vector<int> from = test::pointsOf(chosen[static_cast<std::size_t>(i)]);
            const std::vector<int> to = test::pointsOf(slots + i);
            ASSERT_EQ(from.size(), to.size());
            for (std::size_t k = 0; k < from.size(); ++k) {
                ASSERT_EQ(copyOf.try_emplace(from[k], to[k]).first->second, to[k]);
            }
        }
        for (int i = slots + copies; i < OB->nf; ++i) {
            const std::vector<int> wall = test::pointsOf(i);
            ASSERT_EQ(wall.size(), 4U);
            ASSERT_EQ(copyOf.at(wall[2]), wall[1]);
            ASSERT_EQ(copyOf.at(wall[3]), wall[0]);
            ASSERT_TRUE(onBorder(std::pair(std::minmax({wall[2], wall[3]}))));
        }
        ASSERT_EQ(static_cast<int>(test::liveFaces(true).size()), copies);
        OB->nf = slots + copies; // without the walls
        ASSERT_EQ(test::describe(), faces);
    }
    EXPECT_GT(wallsSeen, 500);
}

} // namespace
} // namespace polyfab
