// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/projection.h"
#include "tests/support/mesh_fixture.h"

#include <cmath>
#include <limits>
#include <tuple>

namespace polyfab {
namespace {

using test::MeshTest;
using Grow = MeshTest;
using Insert = MeshTest;

TEST_F(Grow, StepsOf4096AndExactShrinks) {
    const struct {
        int want;
        bool exact;
        int capacity;
    } rows[] = {{0, false, 0},      {1, false, 4096},  {4096, false, 4096}, {4097, false, 8192},
                {100, false, 8192}, {100, true, 4096}, {0, true, 0}};
    for (const auto& row : rows) {
        EXPECT_EQ(OB->growFaces(row.want, row.exact), 1);
        EXPECT_EQ(OB->nfmax, row.capacity) << row.want;
        EXPECT_EQ(OB->faces != nullptr, row.capacity > 0);
    }
    EXPECT_TRUE(shown.log.empty());
}

TEST_F(Grow, ReferencesFollowEveryArrayThatMoves) {
    test::addCube();
    ASSERT_TRUE(OB->growTexCoords(24, false) && OB->growNormals(24, false));
    for (int i = 0; i < OB->nq; ++i) {
        const int t = OB->addTexCoord(i, 0);
        const int d = OB->addNormal(i, 0, 0);
        if (i % 2) OB->corners[i].t = &OB->texcoords[t];
        if (i % 3) OB->corners[i].d = &OB->normals[d];
    }
    const auto references = [] {
        std::vector<std::array<int, 3>> result;
        for (const FaceCorner* q = OB->corners; q != OB->corners + OB->nq; ++q) {
            result.push_back({indexIn(OB->points, q->p), q->t ? indexIn(OB->texcoords, q->t) : -1,
                              q->d ? indexIn(OB->normals, q->d) : -1});
        }
        return result;
    };
    const auto before = references();
    // Far beyond what could be resized in place next to the neighbours' blocks.
    for (const int size : {20'000, 400'000}) {
        ASSERT_TRUE(OB->growPoints(size, false) && OB->growTexCoords(size, false)
                    && OB->growNormals(size, false) && OB->growCorners(size, false));
    }
    EXPECT_EQ(references(), before);
    for (int f = 0; f < OB->nf; ++f) EXPECT_EQ(indexIn(OB->corners, OB->faces[f].q), 4 * f);
}

TEST_F(Grow, TooMuchIsRefusedAndALaterGrowthRecovers) {
    // 2^31 - 4096 points are countable, but no machine gives that many.
    for (const std::int64_t want : {std::int64_t{1} << 33, std::int64_t{INT32_MAX}}) {
        shown.log.clear();
        EXPECT_EQ(OB->growPoints(want, false), 0);
        EXPECT_EQ(shown.log.back(),
                  "message!|I ran out of space when wanting more room for |points");
    }
    EXPECT_EQ(OB->addPoint(1, 2, 3, false), 0);
    EXPECT_EQ(OB->np, 1);
}

TEST_F(Insert, TheFirstFaceMakesWhatItNeeds) {
    Face* face = OB->newFace(3);
    ASSERT_NE(face, nullptr);
    EXPECT_EQ(std::tuple(OB->ng, OB->nmat, OB->ntma, OB->nprt), std::tuple(1, 1, 1, 1));
    EXPECT_STREQ(OB->groups[0].name, "default");
    EXPECT_STREQ(OB->materials[0].name, "default");
    EXPECT_EQ(OB->materials[0].color, 0x808080U);
    EXPECT_EQ(std::tuple(face->selected, face->kind, face->n), std::tuple(1, 2, 3));
    EXPECT_EQ(std::tuple(face->q[2].p, face->q[2].edgeuse), std::tuple(nullptr, 0));
    OB->curgroup = 77;
    OB->curmat = -5;
    face = OB->newFace(3);
    EXPECT_EQ(std::tuple(face->g, face->mat), std::tuple(0, 0));
}

TEST_F(Insert, FaceByPointsDropsRepeats) {
    const struct {
        const char* points;
        bool drop;
        const char* corners;
    } rows[] = {{"ABBCA", true, "ABC"},
                {"AA", true, "A"},
                {"ABCAA", true, "ABC"},
                {"ABBCA", false, "ABBCA"},
                {"ABAB", true, "ABAB"}};
    for (int i = 0; i < 3; ++i) OB->addPoint(i, 0, 0, false);
    for (const auto& row : rows) {
        std::vector<Point*> list;
        for (const char* c = row.points; *c != 0; ++c) list.push_back(&OB->points[*c - 'A']);
        const int nq = OB->nq;
        const Face* face =
            OB->addFaceByPoints(list.data(), static_cast<int>(list.size()), row.drop);
        std::string corners;
        for (int k = 0; k < face->n; ++k) {
            corners += static_cast<char>('A' + indexIn(OB->points, face->q[k].p));
            EXPECT_EQ(face->q[k].edgeuse, 2);
        }
        EXPECT_EQ(corners, row.corners);
        EXPECT_EQ(OB->nq - nq, static_cast<int>(list.size())); // the unused ones stay
    }
}

TEST_F(Insert, AFaceWithMoreCornersThanItCanCountIsRefused) {
    EXPECT_EQ(OB->newFace(32768), nullptr);
    EXPECT_EQ(OB->nf, 0);
    EXPECT_EQ(shown.log.size(), 1U);
    EXPECT_NE(OB->newFace(32767), nullptr);
    EXPECT_EQ(OB->faces[0].n, 32767);
}

TEST_F(Insert, FindOrAddComparesExactly) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        double x, z;
        int index;
    } rows[] = {{1, 3, 0},   {1, std::nextafter(3.0, 4.0), 1},
                {0, 0, 2},   {-0.0, 0, 2},
                {nan, 0, 3}, {nan, 0, 4},
                {1, 3, 0}};
    for (const auto& row : rows) EXPECT_EQ(OB->findOrAddPoint(row.x, 2, row.z), row.index);
    EXPECT_EQ(OB->findOrAddTexCoord(0.5, 1), 0);
    EXPECT_EQ(OB->findOrAddTexCoord(0.5, 2), 1);
    EXPECT_EQ(OB->findOrAddTexCoord(0.5, 1), 0);
}

TEST_F(Insert, PointsAreProjectedBothWays) {
    const Projection before = projection;
    projection.toScreen = {{{2, 0, 0, 10}, {0, -2, 0, 20}, {0, 0, -2, 30}}};
    projection.toWorld = {{{0.5, 0, 0, -5}, {0, -0.5, 0, 10}, {0, 0, -0.5, 15}}};
    OB->addPoint(1, 2, 3, false);
    OB->addPoint(12, 16, 24, true);
    for (const Point* p : {OB->points, OB->points + 1}) {
        EXPECT_EQ(std::tuple(p->x, p->y, p->z), std::tuple(1, 2, 3));
        EXPECT_EQ(std::tuple(p->sx, p->sy, p->sz), std::tuple(12, 16, 24));
    }
    projection = before;
}

TEST_F(Insert, PointsOnSelectedFacesAreMarked) {
    test::addCube();
    for (int f = 1; f < 6; ++f) OB->faces[f].selected = 0;
    OB->faces[1].selected = 1;
    OB->faces[1].q = nullptr;
    OB->markPointsOnSelected();
    for (int i = 0; i < 8; ++i) EXPECT_EQ(OB->points[i].onselected, i < 4) << i;
}

TEST_F(Insert, ClearingLeavesOnlyTheGroupsBehind) {
    const int before = storeBlocks();
    test::addCube();
    OB->addNormal(0, 0, 1);
    OB->addTexCoord(0, 0);
    EXPECT_EQ(storeBlocks(), before + 9);
    Group* left = OB->groups;
    OB->clear(true);
    EXPECT_EQ(storeBlocks(), before + 1);
    EXPECT_EQ(std::tuple(OB->groups, OB->changed, OB->curface), std::tuple(nullptr, 0, -1));
    farfree(&left);
}

} // namespace
} // namespace polyfab
