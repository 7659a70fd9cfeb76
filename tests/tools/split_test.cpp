// SPDX-License-Identifier: GPL-3.0-or-later
// Faces split at planes: nothing spans one afterwards, and surface and volume are what they were.
#include "geometry/frame.h"
#include "tests/tools/tool_test.h"
#include "tools/mesh_facts.h"
#include "tools/split_by_planes.h"

#include <cmath>

namespace polyfab::test {
namespace {

class SplitByPlanes : public ToolTest {
  protected:
    double part() { return random.below(100000) / 100000.0; }

    /// A star-shaped polygon, or one between two zigzags whose corners lie on six levels.
    std::vector<Vec3> outline(bool zigzag) {
        std::vector<Vec3> corners;
        const int n = 3 + random.below(9);
        for (int k = 0; k < n && !zigzag; ++k) {
            const double angle = 2 * M_PI * k / n, out = 0.3 + part();
            corners.push_back({out * std::cos(angle), out * std::sin(angle), 0});
        }
        for (int k = 0; k < n && zigzag; ++k)
            corners.push_back({k * 1.0, -1.0 - random.below(3), 0});
        for (int k = n; k > 0 && zigzag; --k)
            corners.push_back({k * 1.0, 1.0 + random.below(3), 0});
        return corners;
    }

    /// A body between two copies of the outline, with texture coordinates.
    void addPrism(bool zigzag) {
        const Frame frame = zigzag ? Frame{{1, 0, 0}, {0, 0, 1}, {0, -1, 0}}
                                   : frameAlong({part() - 0.5, part() - 0.5, part() + 0.1});
        const std::vector<Vec3> corners = outline(zigzag);
        const auto n = static_cast<int>(corners.size());
        for (const double depth : {0.0, 1.0}) {
            for (const Vec3& corner : corners) {
                const Vec3 at = frame.u * corner.x + frame.v * corner.y + frame.w * depth;
                OB->addPoint(at.x, at.y, at.z, false);
            }
        }
        Numbers low, high;
        for (int k = 0; k < n; ++k) {
            const int next = (k + 1) % n;
            addFace({k, next, n + next, n + k});
            low.insert(low.begin(), k);
            high.push_back(n + k);
        }
        addFace(low), addFace(high);
        for (int c = 0; c < OB->nq; ++c) {
            const Point& p = *OB->corners[c].p;
            const int t = OB->addTexCoord(p.x, p.z);
            OB->corners[c].t = OB->texcoords + t;
        }
    }

    static double heightOf(const ParallelPlanes& planes, const Point& p) {
        return dot(planes.normal, worldPosition(p)) + planes.offset;
    }
    static bool spans(const ParallelPlanes& planes, const Face& face) {
        for (const double at : planes.at) {
            double low = infinity, high = -infinity;
            for (const FaceCorner& corner : corners(face)) {
                low = std::min(low, heightOf(planes, *corner.p) - at);
                high = std::max(high, heightOf(planes, *corner.p) - at);
            }
            if (low < -1e-8 && high > 1e-8) return true;
        }
        return false;
    }
    static MeshFacts facts() {
        MeshFacts found;
        EXPECT_TRUE(findFacts(*OB, found));
        return found;
    }
};

TEST_F(SplitByPlanes, BodiesStayWhatTheyAre) {
    for (int round = 0; round < 1000; ++round) {
        emptyMesh();
        const bool zigzag = round % 2 == 0;
        addPrism(zigzag);
        if (zigzag) OB->faces[random.below(OB->nf)].selected = 0;
        ParallelPlanes planes{{0, 0, 2}, 3, {}};
        for (int i = random.below(4); i >= 0; --i) {
            planes.at.push_back(3 + (zigzag ? random.below(9) - 4 : part() - 0.5));
        }
        const MeshFacts before = facts();
        const int unselected = OB->nf - static_cast<int>(test::liveFaces(true).size());
        splitByPlanes(*OB, planes);
        ASSERT_EQ(check(*OB), nullptr);
        const MeshFacts after = facts();
        ASSERT_EQ(after.genus, before.genus) << round;
        ASSERT_NEAR(after.volume, before.volume, 1e-12) << round;
        ASSERT_NEAR(after.area, before.area, 1e-9) << round;
        for (const Face& face : selectedFaces(*OB)) ASSERT_FALSE(spans(planes, face)) << round;
        ASSERT_EQ(unselected, OB->nf - static_cast<int>(test::liveFaces(true).size()));
        for (int c = 0; c < OB->nq; ++c) {
            const FaceCorner& corner = OB->corners[c];
            ASSERT_NEAR(corner.t->u, corner.p->x, 1e-12);
            ASSERT_NEAR(corner.t->v, corner.p->z, 1e-12);
        }
        const int points = OB->np;
        splitByPlanes(*OB, planes);
        ASSERT_EQ(OB->np, points) << "split twice";
    }
}

TEST_F(SplitByPlanes, ACombIsSplitIntoItsTeeth) {
    std::vector<Vec3> corners{{0, 0, 0}, {9, 0, 0}};
    for (int k = 8; k >= 0; --k) corners.push_back({k + 0.5, 0, k % 2 == 0 ? 3.0 : 1.0});
    addFaceAt(corners);
    splitByPlanes(*OB, {{0, 0, 1}, 0, {2}}); // through five teeth
    EXPECT_EQ(OB->nf, 6);
    EXPECT_EQ(shown.log.back(), "note|1 face split, 10 new points");
    splitByPlanes(*OB, {{0, 0, 1}, 0, {1}}); // where the gaps end
    EXPECT_EQ(OB->nf, 11);
    EXPECT_EQ(shown.log.back(), "note|1 face split, 2 new points");
    for (const Face& face : liveFaces(*OB)) {
        const bool base = face.q[0].p->z < 1 || face.q[1].p->z < 1;
        EXPECT_EQ(face.n, base ? 8 : face.n) << "the base has all corners of the gaps";
    }
}

TEST_F(SplitByPlanes, RefusesAndLeavesOutWithoutHarm) {
    addCube();
    addFaceAt({{nan, 0, 0}, {1, 5, 5}, {1, 0, -5}});
    const MeshBits before = bitsOf(*OB);
    std::vector<double> many(10'000'000);
    for (std::size_t i = 0; i < many.size(); ++i) many[i] = 1e-7 * static_cast<double>(i);
    splitByPlanes(*OB, {{0, 0, 1}, 0, many});
    EXPECT_EQ(shown.log.back(), "message!||so many planes would make more than 20,000,000 points");
    shown.escapeAfter = 5;
    splitByPlanes(*OB, {{0, 0, 1}, 0, {0}});
    EXPECT_EQ(shown.escapeAfter, -1);
    EXPECT_TRUE(bitsOf(*OB) == before);
    splitByPlanes(*OB, {{0, 0, 1}, 0, {0}});
    EXPECT_EQ(shown.log.back(), "note|4 faces split, 4 new points; 1 face left out, not finite");
    emptyMesh();
    addGrid(1, 1);
    many.resize(1000);
    const MeshBits square = bitsOf(*OB);
    shown.escapeAfter = 100; // while its only face is cut
    splitByPlanes(*OB, {{1, 0, 0}, 0, many});
    EXPECT_EQ(shown.escapeAfter, -1);
    EXPECT_TRUE(bitsOf(*OB) == square);
    EXPECT_EQ(shown.log.back(), "note|stopped: nothing has changed");
}

} // namespace
} // namespace polyfab::test
