// SPDX-License-Identifier: GPL-3.0-or-later
// Faces of all shapes, split up: the pieces are good, and together what the face was.
#include "geometry/frame.h"
#include "geometry/polygon.h"
#include "tests/tools/tool_test.h"
#include "tools/bad_faces.h"
#include "tools/mesh_facts.h"

#include <cmath>

namespace polyfab::test {
namespace {

Vec3 areaOf(const Face& face) {
    return doubledArea(
        face.n, [&](int k) { return worldPosition(*face.q[k].p) - worldPosition(*face.q[0].p); });
}

class BadFaces : public ToolTest {
  protected:
    std::string run(void (*tool)(Mesh&), const char* angle) {
        shown.dialogAnswers = {{angle}};
        tool(*OB);
        EXPECT_EQ(check(*OB), nullptr);
        return shown.log.back();
    }
};

TEST_F(BadFaces, AreToldFromGoodOnes) {
    const struct {
        std::vector<Vec3> corners;
        bool bad;
        int pieces;
    } cases[] = {
        {{{0, 0, 0}, {4, 0, 0}, {0, 3, 0}}, false, 1},
        {{{0, 0, 0}, {4, 0, 0}, {4, 3, 0}, {2, 3, 0}, {0, 3, 0}}, false, 1}, // one in a line
        {{{0, 0, 0}, {4, 0, 0}, {1, 1, 0}, {0, 4, 0}}, true, 2},             // an arrow
        {{{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 0}, {1, 2, 0}, {0, 2, 0}}, true, 2}, // an L
        {{{0, 0, 0}, {2, 2, 0}, {2, 0, 0}, {0, 3, 0}}, true, 1},                // sides cross
        {{{0, 0, 0}, {1, 0, 0}, {1, 1, 0.3}, {0, 1, 0}}, true, 2},              // bent
        {{{0, 0, 0}, {1, 0, 0}, {1, 1, 0.01}, {0, 1, 0}}, false, 1},            // hardly bent
        {{{0, 3, 0}, {2, -3, 0}, {-3, 1, 0}, {3, 1, 0}, {-2, -3, 0}}, true, 1}, // a pentagram
        {{{0, 0, 0},
          {4, 0, 0},
          {4, 4, 0},
          {0, 4, 0},
          {0, 0, 0},
          {1, 1, 0},
          {1, 3, 0},
          {3, 3, 0},
          {3, 1, 0},
          {1, 1, 0}},
         true,
         4}, // a square with a hole
    };
    for (const auto& [corners, bad, pieces] : cases) {
        emptyMesh();
        addFaceAt(corners);
        run(selectBadFaces, "5");
        EXPECT_EQ(OB->faces[0].selected, bad) << &corners - &cases[0].corners;
        run(splitBadFaces, "5");
        EXPECT_EQ(OB->nf, pieces);
    }
}

TEST_F(BadFaces, OfRandomShapeAreSplitIntoGoodPieces) {
    for (int round = 0; round < 400; ++round) {
        emptyMesh();
        const auto part = [&] { return random.below(1000) / 1000.0; };
        const Frame frame = frameAlong({part() - 0.5, part() - 0.5, part() + 0.1});
        const int n = 4 + random.below(round % 10 == 0 ? 400 : 12);
        const double noise = round % 3 == 0 ? 0.05 : 0;
        std::vector<Vec3> corners;
        for (int k = 0; k < n; ++k) {
            const double angle = 2 * M_PI * k / n, out = 0.2 + part();
            corners.push_back(frame.u * (out * std::cos(angle)) + frame.v * (out * std::sin(angle))
                              + frame.w * (noise * part()));
        }
        const Face& face = addFaceAt(corners);
        Vec3 left = areaOf(face);
        run(splitBadFaces, "10");
        EXPECT_EQ(OB->np, n);
        for (const Face& piece : liveFaces(*OB)) left = left - areaOf(piece);
        ASSERT_LT(largestPart(left), 1e-12) << round;
        MeshFacts facts;
        ASSERT_TRUE(findFacts(*OB, facts));
        ASSERT_TRUE(facts.looseEdges == n && facts.badEdges == 0 && facts.parts == 1) << round;
        ASSERT_EQ(run(selectBadFaces, "10"), "note|0 such faces found") << round;
    }
}

} // namespace
} // namespace polyfab::test
