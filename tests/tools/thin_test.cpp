// SPDX-License-Identifier: GPL-3.0-or-later
// Surfaces with all that has to be kept, thinned: what it is made of stays, and what was not
// selected to the last bit.
#include "geometry/closest_point.h"
#include "tests/tools/tool_test.h"
#include "tools/mesh_facts.h"
#include "tools/thin/thin_out.h"

#include <cmath>
#include <set>

namespace polyfab::test {
namespace {

class ThinOut : public ToolTest {
  protected:
    std::string thin(const char* percent, const char* farthest) {
        shown.log.clear();
        shown.dialogAnswers = {{percent, farthest}};
        thinOut(*OB);
        EXPECT_EQ(check(*OB), nullptr);
        return shown.log.back();
    }
    static MeshFacts facts() {
        MeshFacts found;
        EXPECT_TRUE(findFacts(*OB, found));
        return found;
    }
    /// A ring of rings with a texture seam either way; of quads, triangles or both.
    void addTorus(int around, int through, int triangles) {
        for (int i = 0; i <= around; ++i) {
            for (int k = 0; k <= through; ++k) {
                const double a = 2 * M_PI * i / around, b = 2 * M_PI * k / through;
                const double out = 3 + std::cos(b);
                if (i < around && k < through) {
                    OB->addPoint(out * std::cos(a), out * std::sin(a), std::sin(b), false);
                }
                OB->addTexCoord(1.0 * i / around, 1.0 * k / through);
            }
        }
        for (int i = 0; i < around; ++i) {
            for (int k = 0; k < through; ++k) {
                const std::pair<int, int> quad[] = {{i, k}, {i + 1, k}, {i + 1, k + 1}, {i, k + 1}};
                std::vector<FaceCorner> list;
                for (const auto& [x, y] : quad) {
                    const int p = x % around * through + y % through, t = x * (through + 1) + y;
                    list.push_back({OB->points + p, nullptr, OB->texcoords + t, 2, 0});
                }
                if (random.below(2) < triangles) {
                    OB->addFaceByCorners(list.data(), 3);
                    list.erase(list.begin() + 1);
                }
                OB->addFaceByCorners(list.data(), static_cast<int>(list.size()));
            }
        }
    }
    /// Rings of quads between two caps of as many corners as a ring has.
    static void addCylinder(int around, int rings) {
        for (int i = 0; i <= rings; ++i) {
            for (int k = 0; k < around; ++k) {
                const double angle = 2 * M_PI * k / around;
                OB->addPoint(std::cos(angle), std::sin(angle), i, false);
            }
        }
        Numbers bottom, top;
        for (int k = 0; k < around; ++k) {
            bottom.insert(bottom.begin(), k);
            top.push_back(rings * around + k);
            for (int i = 0; i < rings; ++i) {
                const int low = i * around, next = (k + 1) % around;
                addFace({low + k, low + next, low + around + next, low + around + k});
            }
        }
        addFace(bottom), addFace(top);
    }
    /// Whether the corner is about where its place in the texture was, and on the same side of the
    /// seams as the first one of its face.
    static bool isTrue(const FaceCorner& corner, const FaceCorner& first) {
        const double a = 2 * M_PI * corner.t->u, b = 2 * M_PI * corner.t->v;
        const double out = 3 + std::cos(b);
        const Vec3 was{out * std::cos(a), out * std::sin(a), std::sin(b)};
        return squaredDistance(*corner.p, was) < 2 && std::abs(corner.t->u - first.t->u) < 0.9
               && std::abs(corner.t->v - first.t->v) < 0.9;
    }
};

TEST_F(ThinOut, SurfacesKeepWhatTheyAreMadeOf) {
    for (int round = 0; round < 120; ++round) {
        emptyMesh();
        addTorus(12 + random.below(30), 9 + random.below(20), round % 3);
        OB->addMaterial(1, "other");
        const bool holes = round % 4 == 1; // what is left is torn to rags
        for (int f = 0; f < OB->nf; ++f) {
            Face& face = OB->faces[f];
            if (holes && random.below(12) == 0) face.q = nullptr;
            if (round % 5 == 1) face.selected = f % 300 > 80;
            if (round % 6 == 1) face.mat = f % 200 > 110;
        }
        const auto unselected = [] {
            auto all = describe();
            std::erase_if(all, [](const Description& face) { return face.selected != 0; });
            return all;
        };
        const auto rest = unselected();
        const MeshFacts before = facts();
        const std::string told = thin(round % 7 == 0 ? "0" : "50", round % 7 == 0 ? ".05" : "0");
        const MeshFacts after = facts();
        ASSERT_EQ(unselected(), rest) << round;
        ASSERT_LE(after.faces, before.faces) << round << told;
        ASSERT_EQ(after.genus, before.genus) << round;
        ASSERT_EQ(after.parts, before.parts) << round;
        ASSERT_EQ(after.holes, before.holes) << round;
        ASSERT_EQ(after.overusedEdges + after.badEdges, 0) << round;
        ASSERT_NEAR(after.area / before.area, 1, holes ? 0.5 : 0.15) << round;
        for (const Face& face : liveFaces(*OB)) {
            for (const FaceCorner& corner : corners(face)) {
                ASSERT_TRUE(holes || isTrue(corner, face.q[0])) << round << told;
            }
        }
    }
}

TEST_F(ThinOut, GoesNoFartherThanAllowed) {
    addTorus(60, 30, 2);
    const std::vector<Vec3> old = allPositions();
    thin("0", ".03");
    EXPECT_LT(OB->nf, 1500);
    for (const Vec3& at : old) {
        double least = infinity;
        for (const Face& face : liveFaces(*OB)) {
            const auto place = [&](int k) { return worldPosition(*face.q[k].p); };
            least = std::min(
                least, squaredDistance(at, closestInTriangle(at, place(0), place(1), place(2))));
        }
        ASSERT_LE(std::sqrt(least), 0.03 + 1e-9);
    }
}

TEST_F(ThinOut, FlatFacesOfManyTrianglesBecomeFew) {
    addGrid(30, 30);
    EXPECT_EQ(thin("100", "0"), "note|there were 900 faces; now there are 900");
    thin("0", "1e-9");
    EXPECT_NEAR(facts().area, 900, 1e-9) << "with its corners where they were";
    EXPECT_LT(OB->nf, 60);
}

TEST_F(ThinOut, CornersOfBordersStayToTheLastBit) {
    for (const auto& [percent, farthest] : {std::pair("50", "0"), std::pair("0", ".001")}) {
        emptyMesh();
        addGrid(20, 20);
        for (int i = 0; i < OB->np; ++i) {
            moveTo(OB->points[i], worldPosition(OB->points[i]) * (1 / 20.0));
        }
        thin(percent, farthest);
        int found = 0;
        for (const Vec3& at : allPositions()) {
            found += (at.x == 0 || at.x == 1) && (at.y == 0 || at.y == 1) && at.z == 0;
        }
        EXPECT_EQ(found, 4) << percent;
    }
}

TEST_F(ThinOut, CappedCylindersOfQuadsBecomeCoarser) {
    constexpr struct {
        int around, rings;
        const char* percent;
        double part, volume;
    } cases[] = {{16, 5, "50", 0.5, 0.99},
                 {16, 5, "20", 0.2, 0.7},
                 {200, 5, "20", 0.2, 0.99},
                 {64, 1, "50", 0.5, 0.8}};
    for (const auto& [around, rings, percent, part, volume] : cases) {
        emptyMesh();
        addCylinder(around, rings);
        const MeshFacts before = facts();
        thin(percent, "0");
        const MeshFacts after = facts();
        EXPECT_LE(static_cast<double>(after.faces), part * static_cast<double>(before.faces) + 1);
        EXPECT_EQ(after.genus, 0);
        EXPECT_GE(after.volume, volume * before.volume);
    }
}

TEST_F(ThinOut, RefusesLeavesAndStops) {
    addTorus(20, 10, 2);
    const MeshBits before = bitsOf(*OB);
    for (const auto& [percent, farthest] : {std::pair("-1", "0"), std::pair("101", "0"),
                                            std::pair("50", "-1"), std::pair("nan", "0")}) {
        EXPECT_TRUE(thin(percent, farthest).starts_with("message!||I need a number")) << percent;
    }
    shown.escapeAfter = 40;
    EXPECT_EQ(thin("10", "0"), "note|stopped: nothing has changed");
    EXPECT_TRUE(bitsOf(*OB) == before && shown.escapeAfter < 0);
    // Random soup: no surface to speak of.
    for (int round = 0; round < 300; ++round) {
        random.fill(4 + random.below(20), 1 + random.below(40), 5);
        thin("0", "0");
    }
}

} // namespace
} // namespace polyfab::test
