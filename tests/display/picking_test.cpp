// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/picking.h"

#include "tests/display/pane_fixture.h"

#include <map>
#include <set>

namespace polyfab::test {
namespace {

/// Across, down, away from the viewer.
using Spot = std::array<double, 3>;

Spot seen(const Point& p, bool left) {
    return left ? Spot{p.sx, p.sy, p.sz} : Spot{p.sz, p.sy, -p.sx};
}

/// The corners of a face as the pane shows it, the first one again at the end; none of a face that
/// it does not show. What faces away is told by a fan of triangles.
std::vector<Spot> outline(const Face& face, bool left) {
    if (face.q == nullptr) return {};
    std::vector<Spot> c;
    for (int k = 0; k <= face.n; ++k) c.push_back(seen(*face.q[k % face.n].p, left));
    double area = 0;
    for (std::size_t k = 2; k < c.size(); ++k) {
        area += (c[k - 1][0] - c[0][0]) * (c[k][1] - c[0][1])
                - (c[k - 1][1] - c[0][1]) * (c[k][0] - c[0][0]);
    }
    return displayOptions.hideFacingAway && area > 0 ? std::vector<Spot>() : c;
}

bool isFinite(const Spot& spot) {
    return std::all_of(spot.begin(), spot.end(), [](double x) { return std::isfinite(x); });
}

class Picking : public PaneTest {
  protected:
    Picking() : PaneTest({401, 200}) {}

    /// Puts a point where the pane shows it at that spot.
    static int addSpot(const Spot& at, bool left = true) {
        const int index = OB->addPoint(0, 0, 0, false);
        Point& p = OB->points[index];
        p.sy = at[1];
        (left ? p.sx : p.sz) = at[0];
        (left ? p.sz : p.sx) = left ? at[2] : -at[2];
        return index;
    }
    double unit() { return random.below(2'000'001) / 1e6 - 1; }

    RandomMesh random{11};
};

TEST_F(Picking, PlacesInPanes) {
    std::string places;
    for (int x = -1; x < 10; ++x) { // 9 columns: four, the line, four
        const auto place = placeInPane({9, 5}, x, 4);
        places += !place ? "-" : (place->left ? "l" : "r") + std::to_string(int(place->x));
        EXPECT_FALSE(placeInPane({9, 5}, x, -1) || placeInPane({9, 5}, x, 5));
    }
    EXPECT_EQ(places, "-l0l1l2l3-r0r1r2r3-");
}

TEST_F(Picking, OfFlatPolygonsTheNearestPlaneInTheOutlineIsFound) {
    int decided = 0, hits = 0;
    for (int round = 0; round < 3000; ++round) {
        emptyMesh();
        displayOptions.hideFacingAway = round % 3 == 0;
        const PanePlace place{round % 2 == 0, 60 * unit(), 60 * unit()};
        std::pair nearest(infinity, -1);
        double second = infinity;
        for (int f = 0; f < 1 + round % 8; ++f) {
            // Outlines cross themselves; the depth is that of a plane.
            const double plane[] = {40 * unit(), 2 * unit(), 2 * unit()};
            const auto depth = [&](double x, double y) {
                return plane[0] + plane[1] * x + plane[2] * y;
            };
            std::vector<int> corners;
            for (int k = random.below(7) + 3; k > 0; --k) {
                const double x = 100 * unit(), y = 100 * unit();
                corners.push_back(addSpot({x, y, depth(x, y)}, place.left));
            }
            Face* const face = addFace(corners);
            if (f == 2) face->q = nullptr;
            if (f == 4) OB->points[corners[1]].sx = OB->points[corners[1]].sz = nan; // never found
            // A vertical ray tells inside from outside.
            const auto c = f == 4 ? std::vector<Spot>() : outline(*face, place.left);
            bool inside = false;
            for (std::size_t k = 1; k < c.size(); ++k) {
                const auto &a = c[k - 1], &b = c[k];
                if ((a[0] > place.x) == (b[0] > place.x)) continue;
                const double y = a[1] + (b[1] - a[1]) * (place.x - a[0]) / (b[0] - a[0]);
                if (std::abs(y - place.y) < 1e-6) second = -infinity; // rounding decides
                if (y > place.y) inside = !inside;
            }
            if (!inside) continue;
            const std::pair found(depth(place.x, place.y), f);
            second = std::min(second, std::max(found, nearest).first);
            nearest = std::min(found, nearest);
        }
        if (second - nearest.first < 1e-6) continue;
        ++decided;
        hits += nearest.second >= 0;
        ASSERT_EQ(faceAt(*OB, place), nearest.second) << round;
    }
    EXPECT_GT(decided, 2500);
    EXPECT_GT(hits, 800);
}

TEST_F(Picking, PointsAndEdgesAgreeWithTheRule) {
    int points = 0, edges = 0;
    for (int round = 0; round < 4000; ++round) {
        // Few points on a lattice, so that ties are frequent. Some are at no number, unless faces
        // are hidden.
        displayOptions.hideFacingAway = round % 3 == 0;
        displayOptions.vertexes = round % 5 < 2;
        random.fill(3 + random.below(12), 1 + random.below(9), 5);
        const auto coordinate = [&] {
            const int die = random.below(displayOptions.hideFacingAway ? 39 : 41);
            return die == 39 ? nan : die == 40 ? infinity : die % 13 - 6;
        };
        for (Point* p = OB->points; p != OB->points + OB->np; ++p) {
            p->sx = coordinate(), p->sy = coordinate(), p->sz = coordinate();
        }
        // Half of the places are as far from one end of many an edge as from the other.
        const auto middle = [&] { return round % 4 < 2 ? 7 * unit() : random.below(27) / 2.0 - 7; };
        const PanePlace place{round % 2 == 0, middle(), middle()};

        const double pointRadius = 5;   // met exactly by 3, 4
        const double edgeRadius = 1.07; // no edge of the lattice is just as far away
        Spot bestPoint{infinity, infinity, -1}, nextPoint = bestPoint;
        const auto meet = [&](int number, double right, double down, double depth) {
            const Spot rank{depth, right * right + down * down, double(number)};
            if (rank[1] > pointRadius * pointRadius || rank == bestPoint) return;
            nextPoint = std::min(nextPoint, std::max(rank, bestPoint));
            bestPoint = std::min(bestPoint, rank);
        };
        std::set<int> used;
        double nearest = infinity;
        std::map<std::pair<int, int>, std::array<double, 4>> found; // of each edge its first side
        for (int f = 0; f < OB->nf; ++f) {
            const auto c = outline(OB->faces[f], place.left);
            const std::vector<int> numbers = pointsOf(f);
            used.insert(numbers.begin(), numbers.end());
            for (std::size_t k = 0; k + 1 < c.size(); ++k) {
                const Spot &a = c[k], &b = c[k + 1];
                if (!isFinite(a)) continue;
                const double right = place.x - a[0], down = place.y - a[1];
                meet(numbers[k], right, down, a[2]);
                if (!isFinite(b)) continue;
                // Of the edge, the point next to the place.
                const double dx = b[0] - a[0], dy = b[1] - a[1], length = dx * dx + dy * dy;
                const double t = length == 0
                                     ? a[2] > b[2]
                                     : std::clamp((right * dx + down * dy) / length, 0.0, 1.0);
                const double away = std::hypot(t * dx - right, t * dy - down);
                const double depth = a[2] + t * (b[2] - a[2]);
                if (away <= edgeRadius) nearest = std::min(nearest, depth);
                found.try_emplace(std::minmax({numbers[k], numbers[(k + 1) % numbers.size()]}),
                                  std::array{away, depth, double(f), double(k)});
            }
        }
        for (int i = 0; displayOptions.vertexes && i < OB->np; ++i) {
            const Spot at = seen(OB->points[i], place.left);
            if (used.contains(i) || !isFinite(at)) continue;
            meet(i, place.x - at[0], place.y - at[1], at[2]);
        }
        const int best = static_cast<int>(bestPoint[2]), next = static_cast<int>(nextPoint[2]);
        points += best >= 0;
        ASSERT_EQ(pointAt(*OB, place, pointRadius), best) << round;
        ASSERT_EQ(pointAt(*OB, place, pointRadius, best), next) << round;
        const PickedEdge edge = edgeAt(*OB, place, edgeRadius);
        ASSERT_EQ(edge.face >= 0, nearest < infinity) << round;
        if (edge.face < 0) continue;
        ++edges;
        const std::vector<int> ends = pointsOf(edge.face);
        const auto k = static_cast<std::size_t>(edge.corner);
        const auto [away, depth, face, corner] =
            found.at(std::minmax({ends[k], ends[(k + 1) % ends.size()]}));
        ASSERT_LE(away, edgeRadius);
        ASSERT_NEAR(depth, nearest, 1e-9) << round;
        ASSERT_EQ(std::tuple(edge.face, edge.corner), std::tuple(face, corner)) << round;
    }
    EXPECT_GT(points, 2000);
    EXPECT_GT(edges, 700);
    EXPECT_LT(std::max(points, edges), 3900);
}

TEST_F(Picking, BetweenFacesThereIsNoGap) {
    // Triangles around points in a square; places on their edges and corners are in one of them.
    for (int i = 0; i < 25; ++i) addSpot({i % 5 * 7.0, i / 5 * 3.0, 0});
    for (int a = 0; a < 19; ++a) {
        if (a % 5 == 4) continue;
        addFace({a, a + 1, a + 6});
        addFace({a + 6, a + 5, a});
    }
    for (int x = 0; x < 28 * 6; ++x) {
        for (int y = 0; y < 12 * 6; ++y) ASSERT_NE(faceAt(*OB, {true, x / 6.0, y / 6.0}), -1);
    }
}

} // namespace
} // namespace polyfab::test
