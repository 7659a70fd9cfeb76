// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/wireframe.h"
#include "mesh/stale.h"

#include "display/edge_list.h"
#include "display/look.h"
#include "tests/display/pane_fixture.h"

#include <cstddef>
#include <map>

namespace polyfab::test {
namespace {

class WireframeTest : public PaneTest {
  protected:
    WireframeTest() : PaneTest({241, 120}) {
        addCube();
        fitView(*OB);
    }
};

TEST_F(WireframeTest, APictureOwesNothingToThoseBefore) {
    OB->faces[1].selected = 0;
    OB->curface = 2;
    bool* const switches = reinterpret_cast<bool*>(&displayOptions);
    constexpr std::size_t count = offsetof(DisplayOptions, mixTexels) + 1; // the last of them
    std::vector<Bitmap> alone;
    for (std::size_t i = 0; i < 2 * count; ++i) {
        displayOptions = {};
        switches[i % count] = !switches[i % count];
        alone.push_back(redraw());
        EXPECT_EQ(alone[i].pixels, alone[i % count].pixels) << i;
        std::fill_n(switches, count, i % 2 == 0);
        turnView(40, 30);
        redraw();
        turnView(0, 0);
    }
}

TEST_F(WireframeTest, OnlyWhatIsStaleIsMadeAgain) {
    const Bitmap first = drawPanes(*OB, client);
    for (int i = 0; i < OB->np; ++i) OB->points[i].x += 1;
    EXPECT_EQ(drawPanes(*OB, client).pixels, first.pixels);
    stale.points = true;
    EXPECT_NE(drawPanes(*OB, client).pixels, first.pixels);
    // More points than the edges were listed for: listed again, whoever forgot to say so.
    const auto before = count(drawPanes(*OB, client), look.selected.color);
    addPoints({{0, 0.5, 0}});
    addFace({3, 8});
    stale.picture = true;
    EXPECT_GT(count(drawPanes(*OB, client), look.selected.color), before);
}

TEST_F(WireframeTest, AnyClientSizeIsDrawn) {
    for (const Size size : {Size{0, 0}, Size{1, 1}, Size{2, 1}, Size{3, 0}, Size{-4, -1},
                            Size{7, 5}, Size{7680, 40}}) {
        const Bitmap& picture = drawPanes(*OB, size);
        EXPECT_EQ(picture.pixels.size(), std::max(size.width, 0) * std::max(size.height, 0));
    }
    EXPECT_GT(count(drawPanes(*OB, {7680, 40}), look.selected.color), 100);
}

/// Lower point, higher point -> marks.
using Edges = std::map<std::pair<int, int>, unsigned>;

/// What the list says; every edge must be there once.
Edges listed(const DrawnEdges& list) {
    Edges edges;
    std::uint32_t kinds = 0;
    for (std::size_t i = 0; i + 1 < list.first.size(); ++i) {
        for (std::uint32_t k = list.first[i]; k < list.first[i + 1]; ++k) {
            edges[{static_cast<int>(i), static_cast<int>(list.other[k])}] = list.marks[k];
            kinds |= 1U << list.marks[k];
        }
    }
    EXPECT_EQ(list.other.size(), edges.size());
    EXPECT_EQ(list.kinds, kinds);
    return edges;
}

TEST_F(WireframeTest, RandomMeshesGiveEachEdgeOnce) {
    RandomMesh random(23);
    DrawnEdges list; // used again and again: nothing may stay of the mesh before
    for (int round = 0; round < 2000; ++round) {
        random.fill(1 + round % 12, round % 30, 5);
        for (int k = 0; k < OB->nq; ++k) OB->corners[k].edgeuse = random.below(4) == 0 ? 255 : 2;
        displayOptions.hideFacingAway = round % 2 != 0;
        Edges edges;
        for (int f = 0; f < OB->nf; ++f) {
            const Face& face = OB->faces[f];
            const std::vector<int> points = pointsOf(f);
            for (std::size_t k = 0; k < points.size(); ++k) {
                const auto key = std::minmax({points[k], points[(k + 1) % points.size()]});
                const bool met = edges.contains(key);
                edges[key] |= (face.selected ? edgemark::selected : 0)
                              | (face.q[k].edgeuse == 255 ? edgemark::bad : 0)
                              | (met ? edgemark::shared : 0)
                              | (isShown(face, true) ? edgemark::inLeft : 0)
                              | (isShown(face, false) ? edgemark::inRight : 0);
            }
        }
        listEdges(*OB, list);
        ASSERT_EQ(listed(list), edges) << round;
    }
}

TEST_F(WireframeTest, UnsoundFacesLoseOnlyWhatCannotBeDrawn) {
    emptyMesh();
    addPoints({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}});
    for (int i = 0; i < 6; ++i) addFace({0, 1, 2, 3});
    Point elsewhere{};
    OB->faces[0].n = 0;
    OB->faces[5].q[1].p = nullptr;    // leaves 2-3 and 3-0
    OB->faces[1].q[0].p = &elsewhere; // leaves 1-2 and 2-3
    OB->faces[2].n = -4;
    OB->faces[3].n = 32000; // beyond the corners in use
    OB->faces[4].q = OB->corners + OB->nq;
    constexpr unsigned marks = edgemark::selected | edgemark::inLeft | edgemark::inRight;
    for (const bool hide : {false, true}) {
        displayOptions.hideFacingAway = hide;
        DrawnEdges list;
        listEdges(*OB, list);
        EXPECT_EQ(listed(list),
                  (Edges{{{2, 3}, marks | edgemark::shared}, {{0, 3}, marks}, {{1, 2}, marks}}));
    }
}

} // namespace
} // namespace polyfab::test
