// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/edges.h"

#include "mesh/check.h"
#include "mesh/garbage.h"
#include "tests/mesh/random_mesh.h"
#include "tests/support/mesh_fixture.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace polyfab {
namespace {

class Edges : public test::MeshTest {
  protected:
    ~Edges() override { freeEdges(*OB); }

    static void addFace(const std::vector<int>& points) {
        std::vector<Point*> list;
        for (const int point : points) list.push_back(OB->points + point);
        OB->addFaceByPoints(list.data(), static_cast<int>(list.size()), false);
    }

    /// Makes OB a band of quads with some faces missing and some turned over, in random order,
    /// whose ends are joined plainly or as a Moebius strip.
    void fillBand() {
        random.fill(0, 0, 0);
        const int length = 2 + random.below(5);
        const int width = 1 + random.below(4);
        const bool twisted = random.below(2) != 0;
        const auto point = [&](int i, int j) {
            const int row = twisted && i == length ? width - j : j;
            return i % length * (width + 1) + row;
        };
        for (int i = 0; i < length * (width + 1); ++i) OB->addPoint(i, i % 7, 0, false);
        std::vector<std::vector<int>> quads;
        for (int k = 0; k < length * width; ++k) {
            const int i = k % length;
            const int j = k / length;
            quads.push_back({point(i, j), point(i + 1, j), point(i + 1, j + 1), point(i, j + 1)});
            std::swap(quads.back(), quads[static_cast<std::size_t>(random.below(k + 1))]);
        }
        for (std::vector<int>& quad : quads) {
            if (random.below(2) != 0) std::reverse(quad.begin(), quad.end());
            if (random.below(9) != 0) addFace(quad);
        }
    }

    test::RandomMesh random{517};
};

/// The tables as the rule builds them, face by face and corner by corner.
struct PlainTables {
    std::vector<std::vector<std::array<int, 3>>> lists; // high, first corner, uses
    std::vector<int> mate, sameDir, use, face, place;

    explicit PlainTables(const Mesh& mesh) : lists(static_cast<std::size_t>(mesh.np)) {
        for (auto* table : {&mate, &face}) table->assign(static_cast<std::size_t>(mesh.nq), -1);
        use.assign(mate.size(), 0);
        place = use;
        sameDir.assign(mate.size(), 255);
        eachCorner(mesh, [&](int i, int k, std::size_t c, std::array<int, 3>& edge) {
            face[c] = i;
            place[c] = k;
            if (++edge[2] != 2) return;
            const auto m = static_cast<std::size_t>(edge[1]);
            mate[c] = edge[1];
            mate[m] = static_cast<int>(c);
            sameDir[c] = sameDir[m] = mesh.corners[c].p == mesh.corners[m].p;
        });
        eachCorner(mesh, [&](int, int, std::size_t c, const std::array<int, 3>& edge) {
            use[c] = edge[2];
        });
    }

    template <typename Use>
    void eachCorner(const Mesh& mesh, Use act) {
        for (int i = 0; i < mesh.nf; ++i) {
            const Face& f = mesh.faces[i];
            for (int k = 0; f.q != nullptr && k < f.n; ++k) {
                int a = indexIn(mesh.points, f.q[k].p);
                int b = indexIn(mesh.points, f.q[(k + 1) % f.n].p);
                if (a > b) std::swap(a, b);
                auto& list = lists[static_cast<std::size_t>(a)];
                const int c = indexIn(mesh.corners, f.q) + k;
                auto found = std::find_if(list.begin(), list.end(),
                                          [&](const auto& edge) { return edge[0] == b; });
                if (found == list.end()) found = list.insert(found, {b, c, 0});
                act(i, k, static_cast<std::size_t>(c), *found);
            }
        }
    }
};

TEST_F(Edges, TablesAreThoseOfTheOneByOneRule) {
    for (int round = 0; round < 5000; ++round) {
        freeEdges(*OB);
        random.fill(1 + random.below(12), 1 + random.below(12), 6);
        ASSERT_TRUE(buildEdges(*OB));
        const PlainTables plain(*OB);
        ASSERT_EQ(OB->nqEdges, OB->nq);
        for (int c = 0; c < OB->nq; ++c) {
            const auto i = static_cast<std::size_t>(c);
            ASSERT_EQ(OB->cornerMate[c], plain.mate[i]);
            ASSERT_EQ(OB->cornerSameDir[c], plain.sameDir[i]);
            ASSERT_EQ(OB->corners[c].edgeuse, plain.use[i]);
            ASSERT_EQ(static_cast<int>(OB->cornerFace[c].face), plain.face[i]);
            ASSERT_EQ(OB->cornerFace[c].place, plain.place[i]);
        }
        for (int p = 0; p < OB->np; ++p) {
            std::vector<std::array<int, 3>> list;
            for (int e = 0; e < OB->pointEdges[p].n; ++e) {
                const Edge& edge = OB->edges[OB->pointEdges[p].first + e];
                list.push_back({edge.high, edge.corner, edge.uses});
            }
            ASSERT_EQ(list, plain.lists[static_cast<std::size_t>(p)]) << round;
        }
    }
}

TEST_F(Edges, CountsOfHugeFansDoNotWrap) {
    constexpr int faces = 100'000;
    for (int i = 0; i < faces + 2; ++i) OB->addPoint(i, 0, 0, false);
    for (int i = 1; i <= faces; ++i) addFace({0, i, i + 1});
    const int before = storeBlocks();
    ASSERT_TRUE(buildEdges(*OB));
    EXPECT_EQ(storeBlocks() - before, 5);
    EXPECT_EQ(OB->pointEdges[0].n, faces + 1);
    for (int i = 0; i < faces; ++i) {
        // All faces get the edge from 0 to 1 as their first.
        OB->faces[i].q[1].p = OB->points + 1;
    }
    ASSERT_TRUE(buildEdges(*OB));
    EXPECT_EQ(OB->edges[0].uses, faces);
    EXPECT_EQ(OB->corners[300].edgeuse, 254);
    freeEdges(*OB);
    EXPECT_EQ(storeBlocks(), before);
}

std::vector<int> uses() {
    std::vector<int> result;
    for (int c = 0; c < OB->nq; ++c) result.push_back(OB->corners[c].edgeuse);
    return result;
}

TEST_F(Edges, AReversedFaceOfACubeIsMarkedAllAround) {
    test::addCube();
    checkEdges(*OB, false, false, false);
    EXPECT_EQ(uses(), std::vector<int>(24, 2));
    reverseFace(OB->faces[4]);
    checkEdges(*OB, false, true, true);
    EXPECT_NE(OB->cornerMate, nullptr);
    const std::vector<int> marks = uses();
    EXPECT_EQ(std::count(marks.begin(), marks.end(), 255), 8);
    EXPECT_EQ(std::count(marks.begin() + 16, marks.begin() + 20, 255), 4);
}

/// Numbers of the sweep rule, and whether each face is to be turned over.
struct PlainSpread {
    int sweeps = 0, reached = 1;
    std::vector<int> keep;

    explicit PlainSpread(const Mesh& mesh) : keep(static_cast<std::size_t>(mesh.nf), 255) {
        const PlainTables tables(mesh);
        std::vector<int> state = keep;
        const auto current = static_cast<std::size_t>(mesh.curface);
        state[current] = 0;
        keep[current] = screenArea(mesh.faces[mesh.curface]) <= 0;
        for (int before = 0; before != reached;) {
            before = reached;
            ++sweeps;
            for (std::size_t i = 0; i < keep.size(); ++i) {
                if (state[i] != 0) continue;
                state[i] = 1;
                for (std::size_t c = 0; c < tables.use.size(); ++c) {
                    if (tables.face[c] != static_cast<int>(i) || tables.use[c] != 2) continue;
                    const auto mate = static_cast<std::size_t>(tables.mate[c]);
                    const auto other = static_cast<std::size_t>(tables.face[mate]);
                    if (state[other] != 255) continue;
                    keep[other] = tables.sameDir[c] == 1 ? 1 - keep[i] : keep[i];
                    state[other] = 0;
                    ++reached;
                }
            }
        }
    }
};

TEST_F(Edges, OrientationIsThatOfTheSweeps) {
    for (int round = 0; round < 2000; ++round) {
        fillBand();
        collectGarbage(*OB);
        if (OB->nf == 0) continue;
        OB->curface = random.below(OB->nf);
        const PlainSpread plain(*OB);
        std::vector<std::vector<test::CornerView>> expected;
        int reversed = 0;
        for (int i = 0; i < OB->nf; ++i) {
            expected.push_back(test::view(OB->faces[i].q, OB->faces[i].n));
            if (plain.keep[static_cast<std::size_t>(i)] != 0) continue;
            std::reverse(expected.back().begin(), expected.back().end());
            ++reversed;
        }
        checkEdges(*OB, true, false, false);
        for (int i = 0; i < OB->nf; ++i) {
            ASSERT_EQ(test::view(OB->faces[i].q, OB->faces[i].n),
                      expected[static_cast<std::size_t>(i)])
                << round;
        }
        ASSERT_EQ(shown.log.back(), "message|checkedges|" + std::to_string(plain.sweeps)
                                        + " iterations, " + std::to_string(reversed)
                                        + " reversed faces found, " + std::to_string(plain.reached)
                                        + " faces checked");
        ASSERT_EQ(check(*OB), nullptr);
    }
}

TEST_F(Edges, TheCurrentFaceEndsAnticlockwiseAsSeen) {
    test::addCube();
    for (int i = 0; i < 8; ++i)
        OB->points[i].sx = OB->points[i].x, OB->points[i].sy = -OB->points[i].y;
    EXPECT_EQ(screenArea(OB->faces[1]), -4); // the far side from the near one: seen anticlockwise
    EXPECT_EQ(screenArea(OB->faces[0]), 4);
    reverseFace(OB->faces[3]);
    struct Row {
        int current;
        const char* text;
    };
    const Row rows[] = {{1, "1 reversed"}, {1, "0 reversed"}, {0, "6 reversed"}, {0, "0 reversed"}};
    for (const Row& row : rows) {
        OB->curface = row.current;
        OB->changed = 0;
        checkEdges(*OB, true, false, false);
        EXPECT_NE(shown.log.back().find(row.text), std::string::npos) << shown.log.back();
        EXPECT_NE(shown.log.back().find(" 6 faces checked"), std::string::npos);
        EXPECT_EQ(OB->changed, row.text[0] != '0');
        EXPECT_EQ(uses(), std::vector<int>(24, 2));
        EXPECT_EQ(screenArea(OB->faces[row.current]), -4);
    }
    EXPECT_EQ(OB->cornerMate, nullptr);
}

TEST_F(Edges, WithoutALiveCurrentFaceNothingHappens) {
    test::addCube();
    OB->faces[2].q = nullptr;
    for (const int current : {-1, 2, 6}) {
        OB->curface = current;
        checkEdges(*OB, true, false, false);
        EXPECT_EQ(OB->nf, 6);
        EXPECT_TRUE(shown.log.empty());
    }
}

TEST_F(Edges, AFaultEndsIt) {
    test::addCube();
    OB->faces[2].q[0].p = nullptr;
    checkEdges(*OB, false, false, true);
    EXPECT_EQ(OB->cornerMate, nullptr);
    EXPECT_EQ(shown.log.back(), "message!|fault in mesh|V->p==0");
}

TEST_F(Edges, AStripNumberedBackwardsTakesNoSweepPerFace) {
    constexpr int faces = 200'000;
    for (int i = 0; i < faces + 2; ++i) OB->addPoint(i / 2, i % 2, 0, false);
    for (int i = 0; i < faces; ++i) addFace({i, i + 1, i + 2}); // every second one disagrees
    OB->curface = faces - 1;
    const auto start = std::chrono::steady_clock::now();
    checkEdges(*OB, true, false, false);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    EXPECT_EQ(shown.log.back(),
              "message|checkedges|200000 iterations, 100000 reversed faces found, "
              "200000 faces checked");
}

} // namespace
} // namespace polyfab
