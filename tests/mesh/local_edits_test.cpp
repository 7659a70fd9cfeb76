// SPDX-License-Identifier: GPL-3.0-or-later
// Splitting a face, joining two and welding a point.
#include "mesh/check.h"
#include "mesh/join_faces.h"
#include "mesh/split_face.h"
#include "mesh/weld_pair.h"
#include "tests/support/mesh_fixture.h"

#include <algorithm>

namespace polyfab {
namespace {

using Points = std::vector<int>;
using test::pointsOf;

/// The points of a face as a ring, begun at its lowest one.
Points ringOf(int face) {
    Points points = pointsOf(face);
    if (points.empty()) return points;
    std::rotate(points.begin(), std::min_element(points.begin(), points.end()), points.end());
    return points;
}

class LocalEdits : public test::MeshTest {
  protected:
    ~LocalEdits() override { EXPECT_EQ(check(*OB), nullptr); }

    /// A mesh of these faces; corners have texture coordinates with the numbers of their points.
    static void make(const std::vector<Points>& faces) {
        test::emptyMesh();
        for (int i = 0; i < 12; ++i) {
            OB->addPoint(i, i * i, 0, false);
            OB->addTexCoord(i, 0);
        }
        for (const Points& points : faces) {
            Face* const face = test::addFace(points);
            for (int k = 0; k < face->n; ++k) face->q[k].t = OB->texcoords + points[std::size_t(k)];
        }
        OB->changed = 0;
    }

    /// Whether every corner still has the texture coordinate that it came with.
    static bool cornersAreWhole() {
        return std::all_of(OB->corners, OB->corners + OB->nq, [](const FaceCorner& corner) {
            return indexIn(OB->texcoords, corner.t) == indexIn(OB->points, corner.p);
        });
    }
};

TEST_F(LocalEdits, JoiningTheHalvesOfASplitGivesTheFaceBack) {
    const Points ring{0, 3, 1, 4, 5, 9, 2, 6};
    for (int from = 0; from < 8; ++from) {
        for (int to = from + 2; to < std::min(8, from + 7); ++to) {
            make({ring});
            OB->faces[0].selected = 0;
            OB->curface = 1;
            const auto point = [&](int corner) { return pointsOf(0)[std::size_t(corner)]; };
            EXPECT_TRUE(diagonalsBetween(*OB, point(from), point((from + 1) % 8)).empty());
            const auto diagonals = diagonalsBetween(*OB, point(from), point(to));
            ASSERT_EQ(diagonals.size(), 1U);
            ASSERT_TRUE(splitFace(*OB, diagonals[0]));
            EXPECT_EQ(pointsOf(1), Points(ring.begin() + from, ring.begin() + to + 1));
            EXPECT_EQ(std::tuple(OB->faces[1].selected, OB->changed), std::tuple(0, 1));
            const auto others = otherSides(*OB, {0, from});
            ASSERT_EQ(others.size(), 1U);
            EXPECT_EQ(OB->faces[0].q[from].edgeuse, 2);
            ASSERT_EQ(joinFaces(*OB, {0, from}, others[0]), nullptr);
            EXPECT_EQ(ringOf(0), ring);
            EXPECT_EQ(pointsOf(1), Points());
            EXPECT_EQ(OB->curface, 0);
            EXPECT_TRUE(cornersAreWhole());
        }
    }
}

TEST_F(LocalEdits, JoiningTakesAllEdgesThatFollowEachOtherOrSaysWhyNot) {
    const struct {
        Points one, two;
        int corner;
        Points joined; ///< {}: refused
        std::string refusal;
    } rows[] = {
        {{0, 1, 2, 3}, {3, 2, 1, 4}, 1, {0, 1, 4, 3}, ""}, // two edges, from the first
        {{0, 1, 2, 3}, {3, 2, 1, 4}, 2, {0, 1, 4, 3}, ""}, // and from the second
        {{0, 1, 2}, {2, 1, 0, 4, 5}, 0, {0, 4, 5, 2}, ""}, // all but one edge of a triangle
        {{0, 1, 2, 3, 4, 5}, {1, 0, 6, 4, 3, 7}, 0, {0, 6, 4, 3, 7, 1, 2, 3, 4, 5}, ""}, // a gap
        {{0, 1, 2}, {2, 1, 0}, 1, {}, "the two faces on this edge cover each other"},
        {{0, 1, 2}, {1, 2, 3}, 1, {}, "the two faces on this edge do not run the same way"},
        {{0, 1, 2, 1, 0, 5}, {6, 7, 8}, 1, {}, "both sides of this edge are the same face"},
    };
    for (const auto& row : rows) {
        make({row.one, row.two});
        const auto others = otherSides(*OB, {0, row.corner});
        ASSERT_EQ(others.size(), 1U);
        const char* const refused = joinFaces(*OB, {0, row.corner}, others[0]);
        EXPECT_EQ(refused != nullptr ? refused : "", row.refusal);
        EXPECT_EQ(ringOf(0), refused != nullptr ? row.one : row.joined);
        EXPECT_EQ(pointsOf(1), refused != nullptr ? row.two : Points());
        EXPECT_EQ(OB->changed, refused == nullptr);
    }
}

TEST_F(LocalEdits, WeldingTidiesWhatItTouches) {
    make({{0, 1, 2, 3}, {0, 2, 3, 1, 4, 5}, {2, 3, 4}, {0, 1, 2}});
    OB->curface = 3;
    EXPECT_EQ(weldPair(*OB, 1, 0), 3);
    const Points left[] = {{0, 2, 3}, {0, 4, 5}, {2, 3, 4}, {}, {0, 2, 3}}; // a waist comes apart
    for (int f = 0; f < OB->nf; ++f) EXPECT_EQ(ringOf(f), left[f]);
    EXPECT_EQ(std::tuple(OB->nf, OB->curface, OB->changed), std::tuple(5, -1, 1));
    OB->changed = 0;
    EXPECT_EQ(weldPair(*OB, 1, 0), 0);
    EXPECT_EQ(OB->changed, 0);
}

} // namespace
} // namespace polyfab
