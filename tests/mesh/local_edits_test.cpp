// SPDX-License-Identifier: GPL-3.0-or-later
// Splitting a face, joining two and welding a point.
#include "mesh/check.h"
#include "mesh/edges.h"
#include "mesh/join_faces.h"
#include "mesh/split_face.h"
#include "mesh/weld_pair.h"
#include "tests/mesh/random_mesh.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace polyfab {
namespace {

using Points = std::vector<int>;

/// The points of a face; {} for a deleted one.
Points pointsOf(int index) {
    const Face& face = OB->faces[index];
    Points points;
    for (int k = 0; face.q != nullptr && k < face.n; ++k) {
        points.push_back(indexIn(OB->points, face.q[k].p));
    }
    return points;
}

/// The same ring, begun at its lowest point.
Points turned(Points points) {
    std::rotate(points.begin(), std::min_element(points.begin(), points.end()), points.end());
    return points;
}

class LocalEdits : public test::MeshTest {
  protected:
    /// A mesh of these faces on points of a rough disc; corner k of a face has the texture
    /// coordinate (k, number of the face).
    void make(const std::vector<Points>& faces) {
        test::emptyMesh();
        for (int i = 0; i < 12; ++i) OB->addPoint(std::cos(i), std::sin(i), i % 3, false);
        for (std::size_t f = 0; f < faces.size(); ++f) {
            const int n = static_cast<int>(faces[f].size());
            const int first = OB->nt;
            for (int k = 0; k < n; ++k) OB->addTexCoord(k, static_cast<double>(f));
            Face* const face = test::addFace(faces[f]);
            for (int k = 0; k < n; ++k) face->q[k].t = OB->texcoords + first + k;
        }
        OB->changed = 0;
    }
};

TEST_F(LocalEdits, DiagonalsAreCornersOfOneLiveFaceThatDoNotFollowEachOther) {
    struct Row {
        std::vector<Points> faces;
        std::vector<std::array<int, 3>> found; ///< between the points 0 and 1
    };
    const Row rows[] = {
        {{{0, 2, 1, 3}}, {{0, 0, 2}}},
        {{{2, 1, 3, 4, 0}}, {{0, 1, 4}}},
        {{{0, 1, 2, 3}, {1, 2, 3, 0}, {0, 2, 1}, {0, 2, 3, 4}, {0}, {0, 1}}, {}},
        {{{0, 2, 1, 3}, {2, 3, 4}, {1, 4, 5, 0, 6}}, {{0, 0, 2}, {2, 0, 3}}},
        {{{0, 1, 2, 0, 3}}, {{0, 1, 3}}}, // passes one of them twice, once beside the other
    };
    for (const Row& row : rows) {
        make(row.faces);
        std::vector<std::array<int, 3>> found;
        for (const auto& [face, from, to] : diagonalsBetween(*OB, 0, 1)) {
            found.push_back({face, from, to});
        }
        EXPECT_EQ(found, row.found);
    }
    OB->faces[0].q = nullptr;
    EXPECT_TRUE(diagonalsBetween(*OB, 0, 1).empty());
}

TEST_F(LocalEdits, SplittingSharesTheCornersOutAndCopiesTheAttributes) {
    make({{0, 1, 2, 3, 4, 5}, {6, 7, 8}});
    OB->addGroup("second");
    OB->faces[0].g = 1;
    OB->faces[0].selected = 0;
    ASSERT_TRUE(splitFace(*OB, {0, 1, 4}));
    ASSERT_EQ(OB->nf, 3);
    EXPECT_EQ(pointsOf(0), (Points{0, 1, 4, 5}));
    EXPECT_EQ(pointsOf(2), (Points{1, 2, 3, 4}));
    EXPECT_EQ(pointsOf(1), (Points{6, 7, 8}));
    EXPECT_EQ(OB->faces[2].g, 1);
    EXPECT_EQ(OB->faces[2].selected, 0);
    for (const int f : {0, 2}) {
        const Face& face = OB->faces[f];
        for (int k = 0; k < face.n; ++k) {
            EXPECT_EQ(face.q[k].t->u, indexIn(OB->points, face.q[k].p));
        }
    }
    EXPECT_EQ(OB->changed, 1);
    EXPECT_EQ(check(*OB), nullptr);
}

TEST_F(LocalEdits, JoiningTheHalvesOfASplitGivesTheFaceBack) {
    const Points ring{3, 1, 4, 0, 5, 9, 2, 6};
    for (int from = 0; from < 8; ++from) {
        for (int to = from + 2; to < std::min(8, from + 7); ++to) {
            make({ring});
            OB->curface = 1;
            ASSERT_TRUE(splitFace(*OB, {0, from, to}));
            const auto others = otherSides(*OB, {0, from});
            ASSERT_EQ(others.size(), 1U);
            EXPECT_EQ(OB->faces[0].q[from].edgeuse, 2);
            EXPECT_EQ(OB->faces[1].q[others[0].corner].edgeuse, 2);
            ASSERT_EQ(joinFaces(*OB, {0, from}, others[0]), nullptr);
            EXPECT_EQ(turned(pointsOf(0)), turned(ring));
            EXPECT_EQ(pointsOf(1), Points());
            EXPECT_EQ(OB->curface, 0);
            for (int k = 0; k < OB->faces[0].n; ++k) {
                const FaceCorner& corner = OB->faces[0].q[k];
                EXPECT_EQ(indexIn(OB->points, corner.p),
                          ring[static_cast<std::size_t>(corner.t->u)]);
            }
        }
    }
}

TEST_F(LocalEdits, JoiningTakesAllEdgesThatFollowEachOtherOrSaysWhyNot) {
    struct Row {
        Points one, two;
        int corner;
        Points joined; ///< {}: refused
        std::string refusal;
    };
    const Row rows[] = {
        {{0, 1, 2, 3}, {2, 1, 4, 5}, 1, {0, 1, 4, 5, 2, 3}, ""},
        {{0, 1, 2, 3}, {3, 2, 1, 4}, 1, {0, 1, 4, 3}, ""}, // two edges, from the first
        {{0, 1, 2, 3}, {3, 2, 1, 4}, 2, {0, 1, 4, 3}, ""}, // and from the second
        {{0, 1, 2}, {2, 1, 0, 4, 5}, 0, {0, 4, 5, 2}, ""}, // all but one edge of a triangle
        {{0, 1, 2, 3, 4, 5}, {1, 0, 6, 4, 3, 7}, 0, {0, 6, 4, 3, 7, 1, 2, 3, 4, 5}, ""}, // a gap
        {{0, 1, 2}, {2, 1, 0}, 1, {}, "the two faces on this edge cover each other"},
        {{0, 1, 2}, {1, 2, 3}, 1, {}, "the two faces on this edge do not run the same way"},
        {{0, 1, 2, 1, 0, 5}, {6, 7, 8}, 1, {}, "both sides of this edge are the same face"},
    };
    for (const Row& row : rows) {
        make({row.one, row.two});
        const auto others = otherSides(*OB, {0, row.corner});
        ASSERT_EQ(others.size(), 1U);
        const char* const refused = joinFaces(*OB, {0, row.corner}, others[0]);
        EXPECT_EQ(refused != nullptr ? refused : "", row.refusal);
        if (row.refusal.empty()) {
            EXPECT_EQ(turned(pointsOf(0)), turned(row.joined));
        } else {
            EXPECT_EQ(pointsOf(0), row.one);
            EXPECT_EQ(pointsOf(1), row.two);
            EXPECT_EQ(OB->changed, 0);
        }
        EXPECT_EQ(check(*OB), nullptr);
    }
}

/// Twice the area that the ring of points spans, seen along z.
double areaOf(int index) {
    const Points points = pointsOf(index);
    double area = 0;
    for (std::size_t k = 0; k < points.size(); ++k) {
        const Point& a = OB->points[points[k]];
        const Point& b = OB->points[points[(k + 1) % points.size()]];
        area += a.x * b.y - a.y * b.x;
    }
    return area;
}

TEST_F(LocalEdits, OnRandomFacesJoiningKeepsTheAreaAndSidesAreThoseOfTheEdgeTables) {
    test::RandomMesh random(19);
    int joined = 0;
    for (int round = 0; round < 3000; ++round) {
        random.fill(5, 6, 5);
        ASSERT_TRUE(buildEdges(*OB));
        freeEdges(*OB);
        const Side side{random.below(6), 0};
        if (OB->faces[side.face].q == nullptr) continue;
        const auto others = otherSides(*OB, side);
        EXPECT_EQ(others.size() + 1, OB->faces[side.face].q[0].edgeuse);
        if (others.empty()) continue;
        const double area = areaOf(side.face) + areaOf(others[0].face);
        if (joinFaces(*OB, side, others[0]) == nullptr) {
            ++joined;
            EXPECT_EQ(areaOf(side.face), area); // of whole numbers
        }
        ASSERT_EQ(check(*OB), nullptr);
    }
    EXPECT_GT(joined, 300);
}

TEST_F(LocalEdits, WeldingTidiesWhatItTouches) {
    struct Row {
        Points face;
        std::vector<Points> left; ///< after welding point 1 onto point 0; {}: deleted
        int current;
    };
    const Row rows[] = {
        {{0, 1, 2, 3}, {{0, 2, 3}}, 0},
        {{0, 1, 2}, {{}}, -1},
        {{0, 2, 1, 3}, {{}}, -1}, // two spikes
        {{2, 1, 3}, {{0, 3, 2}}, 0},
        {{0, 2, 3, 1, 4, 5}, {{0, 4, 5}, {0, 2, 3}}, 0}, // a waist becomes two faces
        {{2, 3, 4}, {{2, 3, 4}}, 0},
    };
    for (const Row& row : rows) {
        make({row.face});
        OB->curface = 0;
        const auto had = std::count(row.face.begin(), row.face.end(), 1);
        EXPECT_EQ(weldPair(*OB, 1, 0), had);
        EXPECT_EQ(OB->changed, had);
        ASSERT_EQ(OB->nf, static_cast<int>(row.left.size()));
        for (int f = 0; f < OB->nf; ++f) {
            Points left = pointsOf(f);
            if (!left.empty()) left = turned(left);
            EXPECT_EQ(left, row.left[static_cast<std::size_t>(f)]);
        }
        EXPECT_EQ(OB->curface, row.current);
        EXPECT_EQ(check(*OB), nullptr);
    }
}

} // namespace
} // namespace polyfab
