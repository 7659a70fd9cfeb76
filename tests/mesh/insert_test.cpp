// SPDX-License-Identifier: GPL-3.0-or-later
// Growth of the arrays and adding of elements.
#include "mesh/check.h"
#include "mesh/point_index.h"
#include "tests/support/mesh_fixture.h"

#include <cmath>

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
    } rows[] = {{0, false, 0},      {4096, false, 4096}, {4097, false, 8192},
                {100, false, 8192}, {100, true, 4096},   {0, true, 0}};
    for (const auto& row : rows) {
        EXPECT_EQ(OB->growFaces(row.want, row.exact), 1);
        EXPECT_EQ(OB->nfmax, row.capacity) << row.want;
    }
    // 2^31 - 4096 points are countable, but no machine gives that many.
    for (const std::int64_t want : {std::int64_t{1} << 33, std::int64_t{INT32_MAX}}) {
        EXPECT_EQ(OB->growPoints(want, false), 0);
        EXPECT_EQ(shown.log.back(),
                  "message!|I ran out of space when wanting more room for |points");
    }
    EXPECT_EQ(OB->addPoint(1, 2, 3, false), 0);
    EXPECT_EQ(OB->np, 1);
}

TEST_F(Grow, ReferencesFollowEveryArrayThatMoves) {
    test::RandomMesh(1).fill(20, 20, 6);
    const auto before = test::describe();
    // Far beyond what could be resized in place next to the neighbours' blocks.
    for (const int size : {20'000, 400'000}) {
        ASSERT_TRUE(OB->growPoints(size, false) && OB->growTexCoords(size, false)
                    && OB->growNormals(size, false) && OB->growCorners(size, false));
    }
    EXPECT_EQ(test::describe(), before);
}

TEST_F(Insert, FacesMakeWhatTheyNeedAndHaveNoMoreCornersThanCanBeCounted) {
    EXPECT_EQ(OB->newFace(32768), nullptr);
    EXPECT_EQ(std::tuple(OB->nf, shown.log.size()), std::tuple(0, 1));
    Face* face = OB->newFace(32767);
    ASSERT_NE(face, nullptr);
    EXPECT_EQ(std::tuple(OB->ng, OB->nmat, OB->ntma, OB->nprt), std::tuple(1, 1, 1, 1));
    EXPECT_STREQ(OB->groups[0].name, "default");
    EXPECT_STREQ(OB->materials[0].name, "default");
    EXPECT_EQ(OB->materials[0].color, 0x808080U);
    EXPECT_EQ(std::tuple(face->selected, face->kind, face->n), std::tuple(1, 2, 32767));
    EXPECT_EQ(face->q[32766].p, nullptr);
    OB->curgroup = 77;
    OB->curmat = -5;
    face = OB->newFace(3);
    EXPECT_EQ(std::tuple(face->g, face->mat), std::tuple(0, 0));
    for (int i = 0; i < 3; ++i) OB->addPoint(i, 0, 0, false);
    Point* p = OB->points;
    Point* const list[] = {p, p + 1, p + 1, p + 2, p + 1, p, p};
    EXPECT_EQ(OB->addFaceByPoints(list, 7, true)->q->edgeuse, 2);
    EXPECT_EQ(OB->addFaceByPoints(list, 7, false)->n, 7);
    EXPECT_EQ(test::pointsOf(2), (std::vector<int>{0, 1, 2, 1}));
}

// The table is measured by the scan, on meshes that hold the same position more than once; while it
// adds, it grows several times.
TEST_F(Insert, FindOrAddComparesExactlyByTableAndByScan) {
    const double values[] = {0, -0.0, 1, std::nextafter(1, 2), -1, 0.1, 1e300, INFINITY, NAN, 2};
    for (const int size : {0, 1000}) {
        std::vector<int> found[2];
        for (std::vector<int>& list : found) {
            test::RandomMesh random(5);
            const auto any = [&] { return values[random.below(10)]; };
            OB->np = 0;
            for (int i = 0; i < size; ++i) OB->addPoint(any(), 1, 0, false);
            PointIndex index(*OB);
            for (int i = 0; i < 5000; ++i) {
                const double x = any(), z = i % 3 == 0 ? i - i % 10 : any();
                list.push_back(&list == found ? OB->findOrAddPoint(x, 1, z)
                                              : index.findOrAdd(x, 1, z));
            }
        }
        EXPECT_EQ(found[0], found[1]);
        EXPECT_LT(OB->np, size + 3500); // found again but for NaN and new heights
    }
    for (const auto& [v, index] : {std::pair(1, 0), {2, 1}, {1, 0}}) {
        EXPECT_EQ(OB->findOrAddTexCoord(0.5, v), index);
    }
}

TEST_F(Grow, AMeshThatLostAnArrayIsMadeFitForUse) {
    void (*const losses[])() = {
        [] { farfree(&OB->points); },
        [] { farfree(&OB->corners); },
        [] { farfree(&OB->faces); },
        [] { farfree(&OB->groups); },
        [] { farfree(&OB->materials); }, // those before take the faces along
        [] { farfree(&OB->normals); },
        [] { farfree(&OB->texcoords); },
        [] { farfree(&OB->tmas); },
        [] { farfree(&OB->parts); },
        [] {}};
    for (const auto& lose : losses) {
        SCOPED_TRACE(&lose - losses);
        test::RandomMesh random(3);
        random.fill(20, 20, 5);
        OB->faces[7].prt = static_cast<std::int16_t>(OB->addPart());
        lose();
        OB->settleLostArrays();
        EXPECT_EQ(check(*OB), nullptr);
        EXPECT_EQ(OB->nf, &lose - losses > 4 ? 20 : 0);
        EXPECT_NE(test::addFace({OB->addPoint(0, 0, 0, false), OB->addPoint(1, 0, 0, false),
                                 OB->addPoint(0, 1, 0, false)}),
                  nullptr);
        EXPECT_EQ(check(*OB), nullptr);
    }
}

} // namespace
} // namespace polyfab
