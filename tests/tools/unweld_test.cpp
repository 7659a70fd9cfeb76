// SPDX-License-Identifier: GPL-3.0-or-later
// The three tools that give faces points of their own, each against a plain statement of which
// corners still share a point afterwards.
#include "tools/unweld.h"

#include "display/view.h"
#include "tests/tools/tool_test.h"
#include "tools/separate_glued.h"

#include <functional>
#include <map>

namespace polyfab {
namespace {

using Log = std::vector<std::string>;

struct Spot {
    int face, point;
};

std::vector<Spot> spots() {
    std::vector<Spot> list;
    for (const int face : test::liveFaces()) {
        for (const int point : test::pointsOf(face)) list.push_back({face, point});
    }
    return list;
}

int usedPoints() {
    std::set<int> used;
    for (const Spot& spot : spots()) used.insert(spot.point);
    return static_cast<int>(used.size());
}

/// Whether two faces may share that point afterwards.
using Together = std::function<bool(int face, int other, int point)>;

class Unweld : public test::ToolTest {
  protected:
    /// Corners share a point afterwards exactly when they did before and belong together; nothing
    /// else changes, and no point is left unused.
    void expectRule(void (*tool)(Mesh&), const Together& together) {
        const std::vector<Spot> before = spots();
        const auto faces = test::describe();
        const int points = OB->np;
        const int used = usedPoints();
        if (points > 0) OB->highlightPoint(random.below(points));
        tool(*OB);
        ASSERT_EQ(check(*OB), nullptr);
        ASSERT_EQ(test::describe(), faces);
        const std::vector<Spot> after = spots();
        ASSERT_EQ(after.size(), before.size());
        for (std::size_t i = 0; i < after.size(); ++i) {
            for (std::size_t j = 0; j < i; ++j) {
                const bool expected = before[i].point == before[j].point
                                      && together(before[i].face, before[j].face, before[i].point);
                ASSERT_EQ(after[i].point == after[j].point, expected);
            }
        }
        EXPECT_EQ(OB->np - points, usedPoints() - used);
        for (int p = points; p < OB->np; ++p) {
            const Vec3 screen =
                projection.toScreen({OB->points[p].x, OB->points[p].y, OB->points[p].z});
            EXPECT_EQ(OB->points[p].sx, screen.x);
            EXPECT_EQ(OB->points[p].highlighted, 0);
        }
    }
};

/// Whether the faces have sides to the same other point at this one.
bool shareEdgeAt(int face, int other, int point) {
    const auto ends = [&](int f) {
        std::set<int> result;
        const std::vector<int> list = test::pointsOf(f);
        for (std::size_t k = 0; k < list.size(); ++k) {
            const int next = list[(k + 1) % list.size()];
            if (list[k] == point) result.insert(next);
            if (next == point) result.insert(list[k]);
        }
        result.erase(point);
        return result;
    };
    const std::set<int> a = ends(face);
    const std::set<int> b = ends(other);
    return std::any_of(a.begin(), a.end(), [&](int end) { return b.contains(end); });
}

/// Of each point and face at it the lowest face of the same surface there, found by trying again
/// until nothing changes.
std::map<std::pair<int, int>, int> plainSurfaces() {
    std::map<int, std::set<int>> facesAt;
    for (const Spot& spot : spots()) facesAt[spot.point].insert(spot.face);
    std::map<std::pair<int, int>, int> lowest;
    for (const auto& [point, faces] : facesAt) {
        for (const int face : faces) lowest[{point, face}] = face;
        for (bool again = true; again;) {
            again = false;
            for (const int a : faces) {
                for (const int b : faces) {
                    int& mine = lowest[{point, a}];
                    const int others = lowest[{point, b}];
                    if (others >= mine || !shareEdgeAt(a, b, point)) continue;
                    mine = others;
                    again = true;
                }
            }
        }
    }
    return lowest;
}

TEST_F(Unweld, GluedSurfacesAreSeparatedByThePlainRule) {
    for (int round = 0; round < 1500; ++round) {
        fillWithParts(1 + random.below(12), 1 + random.below(10), 6);
        const auto surface = plainSurfaces();
        expectRule(separateGluedSurfaces, [&](int a, int b, int point) {
            return surface.at({point, a}) == surface.at({point, b});
        });
        const int points = OB->np;
        separateGluedSurfaces(*OB);
        ASSERT_EQ(OB->np, points);
    }
}

TEST_F(Unweld, SelectedFacesAreUnweldedByThePlainRule) {
    for (int round = 0; round < 500; ++round) {
        fillWithParts(1 + random.below(12), 1 + random.below(10), 6);
        expectRule(unweldSelected, [&](int a, int b, int) {
            return OB->faces[a].selected == OB->faces[b].selected;
        });
    }
}

TEST_F(Unweld, SelectedPartsAreUnweldedByThePlainRule) {
    for (int round = 0; round < 500; ++round) {
        fillWithParts(1 + random.below(12), 1 + random.below(10), 6);
        std::set<int> selected;
        for (const int face : test::liveFaces(true)) selected.insert(OB->faces[face].prt);
        expectRule(unweldSelectedParts, [&](int a, int b, int) {
            const int part = OB->faces[a].prt;
            const int other = OB->faces[b].prt;
            return part == other || (!selected.contains(part) && !selected.contains(other));
        });
    }
}

TEST_F(Unweld, TwoTetrahedraTipToTipComeApart) {
    for (int i = 0; i < 7; ++i) OB->addPoint(i, i * i, 0, false);
    for (const int base : {1, 4}) {
        test::addFace({0, base, base + 1});
        test::addFace({0, base + 1, base + 2});
        test::addFace({0, base + 2, base});
    }
    OB->changed = 0;
    stale.edges = false;
    separateGluedSurfaces(*OB);
    EXPECT_EQ(shown.log, Log{"message||I have separated surfaces at 1 point"});
    EXPECT_EQ(OB->np, 8);
    EXPECT_EQ(test::pointsOf(2), (std::vector<int>{0, 3, 1})); // the first faces keep the point
    EXPECT_EQ(test::pointsOf(5), (std::vector<int>{7, 6, 4}));
    EXPECT_TRUE(OB->changed && stale.edges);
    OB->changed = 0;
    separateGluedSurfaces(*OB);
    EXPECT_EQ(shown.log.back(), "message||I have separated surfaces at 0 points");
    EXPECT_EQ(OB->changed, 0);
}

/// Three triangles in parts 0, 2 and 3 that have point 0 in common.
void addThreeParts() {
    for (int i = 0; i < 7; ++i) OB->addPoint(i, 0, 0, false);
    for (const int base : {1, 3, 5}) test::addFace({0, base, base + 1});
    for (int i = 0; i < 4; ++i) OB->addPart();
    OB->faces[1].prt = 2;
    OB->faces[2].prt = 3;
}

TEST_F(Unweld, PartsShowTheirProgressAndThenTheTitleAgain) {
    addThreeParts();
    shown.windowTitle = "before";
    unweldSelectedParts(*OB);
    EXPECT_EQ(shown.log, (Log{"title|I am working on part    1 out of 3",
                              "title|I am working on part    2 out of 3",
                              "title|I am working on part    3 out of 3", "title|before",
                              "message||I have unwelded 2 points"}));
}

TEST_F(Unweld, EscapeStopsBetweenParts) {
    for (int polls = 0; polls < 4; ++polls) {
        test::emptyMesh();
        addThreeParts();
        shown.escapeAfter = polls;
        unweldSelectedParts(*OB);
        EXPECT_EQ(OB->np, 7 + std::min(polls, 2)) << polls;
        EXPECT_EQ(check(*OB), nullptr);
    }
}

} // namespace
} // namespace polyfab
