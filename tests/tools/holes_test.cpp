// SPDX-License-Identifier: GPL-3.0-or-later
// Holes in small and random surfaces, filled: what the surface is afterwards, counted and measured.
#include "tests/tools/tool_test.h"
#include "tools/fill_holes.h"
#include "tools/hole_patch.h"
#include "tools/mesh_facts.h"

#include <cmath>

namespace polyfab::test {
namespace {

class Holes : public ToolTest {
  protected:
    static MeshFacts facts() {
        MeshFacts found;
        EXPECT_TRUE(findFacts(*OB, found));
        return found;
    }
    std::string fillAll(const char* most) {
        shown.dialogAnswers = {{most}};
        fillHoles(*OB);
        EXPECT_EQ(check(*OB), nullptr);
        return shown.log.back();
    }
    /// A ring of rings of quads.
    static void addTorus(int around, int through) {
        for (int i = 0; i < around; ++i) {
            for (int k = 0; k < through; ++k) {
                const double a = 2 * M_PI * i / around, b = 2 * M_PI * k / through;
                const double out = 3 + std::cos(b);
                OB->addPoint(out * std::cos(a), out * std::sin(a), std::sin(b), false);
            }
        }
        for (int i = 0; i < around; ++i) {
            for (int k = 0; k < through; ++k) {
                const int a = i * through, b = (i + 1) % around * through, l = (k + 1) % through;
                addFace({a + k, b + k, b + l, a + l});
            }
        }
    }
};

TEST_F(Holes, OfACubeAreFilledWithTheFaceThatIsMissing) {
    addCube();
    OB->faces[2].q = nullptr;
    OB->faces[1].g = static_cast<std::int16_t>(OB->addGroup("most"));
    for (const int f : {0, 3, 4}) OB->faces[f].g = OB->faces[1].g;
    EXPECT_EQ(fillAll("3"), "note|0 holes filled, 1 left (the longest has 4 edges)");
    shown.escapeAfter = 0;
    EXPECT_EQ(fillAll("4"), "note|stopped: nothing has changed");
    EXPECT_EQ(fillAll("4"), "note|1 hole filled, 0 left");
    const MeshFacts now = facts();
    EXPECT_EQ(now.faces, 6);
    EXPECT_EQ(now.genus, 0);
    EXPECT_NEAR(now.volume, 8, 1e-12);
    EXPECT_EQ(OB->faces[6].g, OB->faces[1].g);
    OB->faces[6].q = nullptr;
    OB->faces[5].selected = 0;
    EXPECT_EQ(fillAll("0"), "note|0 holes filled, 0 left");
    fillHole(*OB);
    EXPECT_EQ(shown.log.back(), "message||click a loose edge of the hole first");
    // Side 3 of face 0 is that to the missing face, or its points are.
    OB->curvertex = indexIn(OB->points, OB->corners[3].p);
    for (const int edge : {3, 0, -1}) {
        workbench.currentEdgeFace = edge < 0 ? -1 : 0;
        workbench.currentEdgeCorner = edge;
        fillHole(*OB);
        EXPECT_EQ(shown.log.back(), "note|1 hole filled, 0 left") << edge;
        EXPECT_EQ(facts().genus, 0);
        OB->faces[OB->nf - 1].q = nullptr;
    }
}

TEST_F(Holes, OfRandomShapeLeaveNothingLooseThatIsNotTold) {
    int closed = 0;
    for (int round = 0; round < 300; ++round) {
        emptyMesh();
        addTorus(4 + random.below(12), 4 + random.below(9));
        const int one = 1 + random.below(9);
        for (int f = 0; f < OB->nf; ++f) {
            if (random.below(10) < one) OB->faces[f].q = nullptr;
        }
        if (facts().faces == 0) continue;
        const auto before = describe();
        const std::string told = fillAll("0");
        const MeshFacts now = facts();
        ASSERT_EQ(now.badEdges + now.overusedEdges, 0) << round;
        const auto after = describe();
        ASSERT_TRUE(std::equal(before.begin(), before.end(), after.begin()));
        ASSERT_EQ(told.find(", 0 left") != told.npos, now.looseEdges == 0) << told;
        closed += now.looseEdges == 0;
        ASSERT_EQ(fillAll("0").substr(0, 21), "note|0 holes filled, " + std::string()) << round;
    }
    EXPECT_GT(closed, 100);
}

TEST_F(Holes, FlatOnesAreCoveredOnceHoweverManyEdgesTheyHave) {
    for (const int n : {3, 4, 7, 60, 161, 1000, 5000}) {
        std::vector<Vec3> loop;
        double area = 0;
        for (int k = 0; k < n; ++k) {
            const double angle = 2 * M_PI * k / n, out = k % 2 == 0 ? 5 : 4 + std::sin(9 * angle);
            loop.push_back({out * std::cos(angle), out * std::sin(angle), 7});
        }
        for (int k = 0; k < n; ++k) {
            const auto at = static_cast<std::size_t>(k),
                       next = static_cast<std::size_t>((k + 1) % n);
            area += (loop[at].x * loop[next].y - loop[at].y * loop[next].x) / 2;
        }
        const auto triangles = patchLoop(
            {loop, [](std::int32_t, std::int32_t) { return false; }, [] { return false; }});
        double covered = 0;
        for (const auto& [a, b, c] : triangles) {
            const auto place = [&](std::int32_t k) { return loop[static_cast<std::size_t>(k)]; };
            const Vec3 twice = cross(place(b) - place(a), place(c) - place(a));
            covered += std::sqrt(dot(twice, twice)) / 2;
        }
        EXPECT_EQ(static_cast<int>(triangles.size()), n - 2);
        EXPECT_NEAR(covered / area, 1, 1e-9) << n;
    }
}

/// The area of the patch of a wavy loop of this many corners.
double patchedArea(int n) {
    std::vector<Vec3> loop;
    for (int k = 0; k < n; ++k) {
        const double angle = 2 * M_PI * k / n, out = 1 + .2 * std::sin(7 * angle);
        loop.push_back({out * std::cos(angle), out * std::sin(angle), .3 * std::sin(3 * angle)});
    }
    double area = 0;
    for (const auto& [a, b, c] : patchLoop(
             {loop, [](std::int32_t, std::int32_t) { return false; }, [] { return false; }})) {
        const auto place = [&](std::int32_t k) { return loop[static_cast<std::size_t>(k)]; };
        const Vec3 twice = cross(place(b) - place(a), place(c) - place(a));
        area += std::sqrt(dot(twice, twice)) / 2;
    }
    return area;
}

TEST(HolePatch, OfVeryManyEdgesIsHardlyLargerThanTheLeast) {
    const double least = patchedArea(160); // of all that there are
    for (const int n : {161, 700, 3000}) EXPECT_LT(patchedArea(n), 1.02 * least) << n;
}

} // namespace
} // namespace polyfab::test
