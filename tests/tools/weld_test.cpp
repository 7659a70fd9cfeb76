// SPDX-License-Identifier: GPL-3.0-or-later
// The welding tools against the same rules said plainly, with a scan for everything.
#include "mesh/stale.h"
#include "tools/asking.h"
#include "tools/weld_points.h"

#include "mesh/edges.h"
#include "mesh/garbage.h"
#include "tests/tools/tool_test.h"
#include "tools/weld_edges.h"
#include "workbench/notes.h"
#include "workbench/prompts.h"
#include "workbench/title.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>

namespace polyfab::test {
namespace {

using Tool = std::function<void(Mesh&)>;

void repoint(const Point* from, Point* to) {
    for (int c = 0; c < OB->nq; ++c) {
        if (OB->corners[c].p == from) OB->corners[c].p = to;
    }
}

bool areClose(const Point& a, const Point& b, double square) {
    const double dx = a.x - b.x, dy = a.y - b.y, dz = a.z - b.z;
    return dx * dx + dy * dy + dz * dz <= square;
}

/// What the two tools do that let points take their turns; take(p, q): p takes q. Gives how many
/// were taken.
template <typename Take>
std::int64_t plainTurns(bool allEdges, Take take) {
    OB->changed = 1;
    collectGarbage(*OB);
    checkEdges(*OB, false, true, false);
    for (int i = 0; i < OB->np; ++i) OB->points[i].mark = 0;
    for (int c = 0; c < OB->nq; ++c) OB->corners[c].mark = 0;
    for (const int f : liveFaces(true)) {
        const Face& face = OB->faces[f];
        for (int k = 0; k < face.n; ++k) {
            FaceCorner *const c = face.q + k, *const next = face.q + (k + 1) % face.n;
            if (allEdges || c->edgeuse == 1) c->mark = next->mark = c->p->mark = next->p->mark = 1;
        }
    }
    std::vector<Point*> list;
    for (int i = 0; i < OB->np; ++i) {
        if (OB->points[i].mark) list.push_back(OB->points + i);
    }
    const double distance = askNumber("max distance?", "1e-5");
    std::vector<bool> left(list.size(), true);
    int counter = 0;
    for (std::size_t i = list.size(); i-- > 0 && !abortRequested();) {
        if (!left[i]) continue;
        if (counter++ % 256 == 0) showTitle("%6d", indexIn(OB->points, list[i]));
        for (std::size_t j = 0; j < i; ++j) {
            if (!areClose(*list[i], *list[j], distance * distance)) continue;
            left[j] = false;
            take(*list[i], *list[j]);
        }
    }
    return std::count(left.begin(), left.end(), false);
}

void plainWeld(bool allEdges) {
    const SavedTitle title(256);
    const auto taken = plainTurns(allEdges, [](Point& p, Point& q) { repoint(&q, &p); });
    noteOfSelected(*OB, "welded " + counted(OB->np, "point") + " to " + counted(OB->np - taken));
}

void plainBring(bool allEdges) {
    const SavedTitle title(256);
    const auto taken = plainTurns(allEdges, [](const Point& p, Point& q) {
        q.x = p.x, q.y = p.y, q.z = p.z;
        q.sx = p.sx, q.sy = p.sy, q.sz = p.sz;
    });
    noteOfSelected(*OB, "brought " + counted(taken, "point") + " to others");
}

/// Gives how many edges collapsed.
int plainPasses(double distance) {
    int collapsed = 0;
    for (int pass = 1, collapses = 1; collapses != 0; ++pass) {
        int corners = 0;
        collapses = 0;
        for (const int f : liveFaces(true)) {
            const Face& face = OB->faces[f];
            for (int k = 0; k < face.n; ++k) {
                ++corners;
                const Point* const a = face.q[(k + face.n - 1) % face.n].p;
                Point* const b = face.q[k].p;
                if (a == b || !areClose(*a, *b, distance * distance)) continue;
                ++collapses;
                if ((corners & 0x255) == 0) showTitle("%6d : %6d", pass, OB->nq - corners);
                if (abortRequested()) return collapsed;
                ++collapsed;
                b->x = (a->x + b->x) * 0.5;
                b->y = (a->y + b->y) * 0.5;
                b->z = (a->z + b->z) * 0.5;
                repoint(a, b);
                break;
            }
        }
        showTitle("%6d", collapses);
    }
    return collapsed;
}

void plainEdges(Mesh&) {
    const double distance = askNumber("max distance?", "1e-5");
    const SavedTitle title(256);
    OB->changed = 1;
    noteOfSelected(*OB, "collapsed " + counted(plainPasses(distance), "edge"));
}

/// Everything that a tool may change; of numbers that are none the sign does not matter, nor where
/// a corner of no face leads.
auto contents() {
    std::string positions;
    for (const Point* p = OB->points; p != OB->points + OB->np; ++p) {
        for (const double* v : {&p->x, &p->y, &p->z, &p->sx, &p->sy, &p->sz}) {
            addBits(positions, std::isnan(*v) ? nan : *v);
        }
    }
    return std::tuple(int{OB->changed}, positions, plainFaces(*OB), bitsOf(*OB).scratch);
}

/// Positions of a random mesh are whole numbers times the unit, plus the offset; the distance is
/// also counted in units, so that many pairs are exactly that far apart.
struct Lattice {
    double unit, offset;
};
constexpr std::array lattices{Lattice{1, 0},      Lattice{0.1, 0},  Lattice{0.3, -1000.7},
                              Lattice{1, 0x1p50}, Lattice{1, 1e16}, Lattice{1e-162, 0},
                              Lattice{1e153, 0},  Lattice{1e-5, 3}};
constexpr std::array distances{0.0,  1.0,    1.0,  1.4142135623730951, 2.0, -1.0, 0.5, 3.0, 20.0,
                               1e10, 1e-300, 1e200};

class Weld : public ToolTest {
  protected:
    void fillLattice(int points, int faces, const Lattice& lattice) {
        random.fill(points, faces, 5);
        const bool odd = random.below(8) == 0;
        for (int i = 0; i < OB->np; ++i) {
            Point& p = OB->points[i];
            for (double* v : {&p.x, &p.y, &p.z}) *v = (*v - 4) * lattice.unit + lattice.offset;
            p.sx = i;
            constexpr std::array values{infinity, -infinity, nan, 1.7e308, -1.7e308};
            double* const any[]{&p.x, &p.y, &p.z};
            if (odd && random.below(2)) *any[random.below(3)] = values[random.below(5)];
        }
    }

    void answer(const std::string& distance) { shown.dialogAnswers = {{distance}}; }

    /// What the tool does to a mesh that `fill` makes: the contents afterwards and all that showed.
    auto outcome(unsigned seed, const std::string& distance, int polls, const Tool& tool) {
        random = RandomMesh(seed);
        const Lattice& lattice = lattices[random.below(lattices.size())];
        if (seed % 50 != 0) {
            fillLattice(1 + random.below(60), 1 + random.below(40), lattice);
        } else { // enough points to crowd a cell when one of them is far away
            fillLattice(700, 400, lattice);
            OB->points[0].x *= 1e6;
        }
        answer(distance);
        shown.windowTitle = "before";
        shown.log.clear();
        shown.escapeAfter = polls;
        tool(*OB);
        shown.escapeAfter = -1;
        EXPECT_EQ(check(*OB), nullptr);
        return std::pair(contents(), shown.log);
    }

    /// Both leave the same mesh and show the same; the tool also says what is out of date.
    void expectSame(const Tool& tool, const Tool& plain, bool Stale::*outOfDate,
                    unsigned firstSeed) {
        for (unsigned seed = firstSeed; seed < firstSeed + 2000; ++seed) {
            random = RandomMesh(seed);
            const double unit = lattices[random.below(lattices.size())].unit;
            random = RandomMesh(seed + 1000000);
            char distance[64];
            std::snprintf(distance, sizeof distance, "%.17g",
                          distances[random.below(distances.size())] * unit);
            const std::array odd{"nan", "inf", "1e400", "-inf"};
            if (random.below(12) == 0) std::strcpy(distance, odd[random.below(4)]);
            const int polls = random.below(2) ? -1 : random.below(60);
            const auto expected = outcome(seed, distance, polls, plain);
            stale = {false, false, false};
            ASSERT_TRUE(outcome(seed, distance, polls, tool) == expected)
                << seed << ' ' << distance;
            ASSERT_TRUE(stale.*outOfDate);
        }
    }
};

TEST_F(Weld, RandomMeshesAreWeldedByThePlainRule) {
    for (const bool allEdges : {true, false}) {
        expectSame([=](Mesh& mesh) { weldclose(mesh, allEdges); },
                   [=](Mesh&) { plainWeld(allEdges); }, &Stale::edges, 0);
    }
}

TEST_F(Weld, PointsOfRandomMeshesAreBroughtTogetherByThePlainRule) {
    for (const bool allEdges : {true, false}) {
        expectSame([=](Mesh& mesh) { bringclose(mesh, allEdges); },
                   [=](Mesh&) { plainBring(allEdges); }, &Stale::edges, 10000);
    }
}

TEST_F(Weld, EdgesOfRandomMeshesGoByThePlainRule) {
    expectSame(weldedges, plainEdges, &Stale::points, 20000);
}

} // namespace
} // namespace polyfab::test
