// SPDX-License-Identifier: GPL-3.0-or-later
// Faces taken apart, against a plain statement of which pieces come out and in which order.
#include "mesh/stale.h"
#include "tools/triangularize.h"

#include "tests/tools/tool_test.h"

namespace polyfab::test {
namespace {

/// The corners of the pieces of a face, by their places in it.
using Pieces = std::vector<Numbers>;

Pieces trianglesOf(int n) {
    Pieces pieces;
    for (int k = 2; k < n; ++k) pieces.push_back({0, k - 1, k});
    return pieces;
}

Pieces quadsOf(int n) {
    Pieces pieces;
    int k = 3;
    for (; k < n; k += 2) pieces.push_back({0, k - 2, k - 1, k});
    if (n % 2 == 1) pieces.push_back({0, k - 2, k - 1});
    return pieces;
}

using Faces = std::vector<Description>;

class Triangularize : public ToolTest {
  protected:
    void fill() {
        fillWithParts(14, 10, 9);
        for (int i = 0; i < 3; ++i) OB->addTextureMapArea();
        for (int i = 0; i < OB->nf; ++i) {
            OB->faces[i].tma = static_cast<std::int16_t>(random.below(3));
        }
        workbench.currentEdgeFace = workbench.currentEdgeCorner = 0;
        OB->changed = 0;
        stale.edges = false;
    }

    /// No face passes a point twice: a collection finds nothing to tidy in them or their pieces.
    void spreadCorners() {
        while (OB->np < 9) OB->addPoint(OB->np, 0, 0, false);
        for (int i = 0; i < OB->nf; ++i) {
            const int start = random.below(OB->np);
            for (int k = 0; OB->faces[i].q != nullptr && k < OB->faces[i].n; ++k) {
                OB->faces[i].q[k].p = OB->points + (start + k) % OB->np;
            }
        }
    }

    /// Appends one piece of a face.
    static void append(Faces& to, const Description& face, const Numbers& places) {
        Description& piece = to.emplace_back(face);
        piece.corners.clear();
        for (const int k : places)
            piece.corners.push_back(face.corners[static_cast<std::size_t>(k)]);
    }

    void expectAll(const Faces& expected) {
        EXPECT_EQ(check(*OB), nullptr);
        EXPECT_EQ(describe(), expected);
        EXPECT_TRUE(OB->changed && stale.edges);
    }
};

TEST_F(Triangularize, AllSelectedFacesAreSplitByThePlainRule) {
    for (int round = 0; round < 2000; ++round) {
        fill();
        const bool triangles = round % 2 == 0;
        if (!triangles) spreadCorners();
        const Faces before = describe();
        const Numbers numbers = liveFaces();
        Faces expected;
        int curface = -1;
        for (const int selected : {0, 1}) {
            for (std::size_t i = 0; i < before.size(); ++i) {
                const auto n = static_cast<int>(before[i].corners.size());
                if (before[i].selected != selected || n < 3) continue;
                Pieces pieces{Numbers()};
                for (int k = 0; k < n; ++k) pieces[0].push_back(k);
                if (selected) pieces = triangles ? trianglesOf(n) : quadsOf(n);
                if (numbers[i] == OB->curface && pieces.size() == 1) {
                    curface = static_cast<int>(expected.size());
                }
                for (const Numbers& places : pieces) append(expected, before[i], places);
            }
        }
        shown.log.clear();
        (triangles ? triangularize : breakupfaces)(*OB);
        expectAll(expected);
        ASSERT_FALSE(HasFailure()) << round;
        ASSERT_EQ(OB->curface, curface);
        ASSERT_EQ(workbench.currentEdgeFace, -1);
        ASSERT_EQ(OB->nf, static_cast<int>(expected.size()));
        ASSERT_EQ(shown.log.empty(), triangles); // the edge pass starts with a collection
        if (!triangles) continue;
        ASSERT_TRUE(OB->nfmax == OB->nf && OB->nqmax == OB->nq);
    }
}

TEST_F(Triangularize, OneFaceIsSplitIntoAFanAtTheEnd) {
    for (int round = 0; round < 1000; ++round) {
        fill();
        const int index = random.below(OB->nf);
        const Face face = OB->faces[index];
        const int slots = OB->nf, n = face.q == nullptr ? 3 : face.n;
        OB->curface = index;
        Faces expected = describe();
        const Numbers numbers = liveFaces();
        const auto place = std::find(numbers.begin(), numbers.end(), index) - numbers.begin();
        if (n > 3) {
            Description whole = expected[static_cast<std::size_t>(place)];
            whole.selected = 1;
            for (const Numbers& places : trianglesOf(n)) append(expected, whole, places);
        } else {
            OB->changed = stale.edges = true; // it does not touch them
        }
        if (n != 3) expected.erase(expected.begin() + place);
        fanface(*OB, index);
        expectAll(expected);
        ASSERT_FALSE(HasFailure()) << round;
        ASSERT_EQ(OB->nf, slots + (n > 3 ? n - 2 : 0));
        ASSERT_EQ(OB->curface, n > 3 ? -1 : index);
    }
}

TEST_F(Triangularize, TheLargestFaceIsNoException) {
    const struct {
        void (*tool)(Mesh&);
        int pieces;
    } cases[] = {{triangularize, maxIndexed - 2}, {breakupfaces, (maxIndexed - 1) / 2}};
    for (const auto& [tool, pieces] : cases) {
        emptyMesh();
        Numbers points;
        for (int i = 0; i < maxIndexed; ++i) points.push_back(OB->addPoint(i, 0, 0, false));
        addFace(points);
        tool(*OB);
        EXPECT_EQ(check(*OB), nullptr);
        EXPECT_EQ(OB->nf, pieces);
        EXPECT_EQ(pointsOf(pieces - 1), (Numbers{0, maxIndexed - 2, maxIndexed - 1}));
    }
}

} // namespace
} // namespace polyfab::test
