// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/picking.h"

#include "display/options.h"
#include "display/view.h"
#include "tests/display/meshes.h"
#include "tests/support/mesh_fixture.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace polyfab {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

class Picking : public testing::Test {
  protected:
    Picking() { displayOptions = DisplayOptions(); }
    ~Picking() override { displayOptions = DisplayOptions(); }
    test::FakePlatform shown;
};

void addScreenPoint(Mesh& mesh, double sx, double sy, double sz) {
    const int index = mesh.addPoint(0, 0, 0, false); // may move the points
    Point& p = mesh.points[index];
    p.sx = sx;
    p.sy = sy;
    p.sz = sz;
}

/// A point as the pane shows it: across, down, away from the viewer.
std::array<double, 3> seen(const Point& p, bool left) {
    return left ? std::array{p.sx, p.sy, p.sz} : std::array{p.sz, p.sy, -p.sx};
}

std::vector<std::array<double, 3>> outline(const Face& face, bool left) {
    std::vector<std::array<double, 3>> corners;
    for (int k = 0; k < face.n; ++k) corners.push_back(seen(*face.q[k].p, left));
    return corners;
}

/// The rule for faces that face away, stated by a fan of triangles.
bool isHidden(const Face& face, bool left) {
    const auto c = outline(face, left);
    double area = 0;
    for (std::size_t k = 2; k < c.size(); ++k) {
        area += (c[k - 1][0] - c[0][0]) * (c[k][1] - c[0][1])
                - (c[k - 1][1] - c[0][1]) * (c[k][0] - c[0][0]);
    }
    return displayOptions.hideFacingAway && area > 0;
}

TEST_F(Picking, PlacesInPanes) {
    struct Row {
        int x, y;
        bool found, left;
        double across;
    };
    // 9 columns: four, the line, four.
    const Row rows[] = {
        {0, 0, true, true, 0},    {3, 4, true, true, 3},   {4, 2, false, true, 0},
        {5, 2, true, false, 0},   {8, 4, true, false, 3},  {9, 2, false, false, 0},
        {-1, 2, false, false, 0}, {2, 5, false, false, 0}, {2, -1, false, false, 0}};
    for (const Row& row : rows) {
        const auto place = placeInPane({9, 5}, row.x, row.y);
        ASSERT_EQ(place.has_value(), row.found) << row.x << ' ' << row.y;
        if (!place) continue;
        EXPECT_EQ(place->left, row.left) << row.x;
        EXPECT_EQ(place->x, row.across) << row.x;
        EXPECT_EQ(place->y, row.y);
    }
}

TEST_F(Picking, OfACubeTheSideTowardsTheViewerIsFound) {
    createMesh();
    test::addCube();
    resizeView({401, 200});
    resetView();
    transformPoints(*OB);
    struct Row {
        bool left;
        int face, point, edge; ///< the edge is given by the first of its two faces
        int behind;            ///< the face behind `face`
    };
    // In the left pane the side z = 1 is in front, in the right one x = 1. The places of point and
    // edge are at the pane's right side: x = 1 in the left pane and z = -1 in the right one.
    const Row rows[] = {{true, 1, 5, 1, 0}, {false, 5, 1, 0, 4}};
    for (const Row& row : rows) {
        EXPECT_EQ(faceAt(*OB, {row.left, 100, 110}), row.face);
        EXPECT_EQ(pointAt(*OB, {row.left, 197, 197}), row.point);
        EXPECT_EQ(edgeAt(*OB, {row.left, 197, 110}).face, row.edge);
        EXPECT_EQ(faceAt(*OB, {row.left, -5, 100}), -1);
        OB->faces[row.face].q = nullptr;
        EXPECT_EQ(faceAt(*OB, {row.left, 100, 110}), row.behind);
        displayOptions.hideFacingAway = true;
        EXPECT_EQ(faceAt(*OB, {row.left, 100, 110}), -1);
        displayOptions.hideFacingAway = false;
    }
    test::emptyMesh();
    destroyMesh();
}

TEST_F(Picking, FaceDepthAndEvenOddOnFlatPolygonsAgreeWithTheirPlanes) {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> unit(-1, 1);
    int decided = 0;
    int hits = 0;
    for (int round = 0; round < 3000; ++round) {
        test::OwnMesh mesh;
        displayOptions.hideFacingAway = round % 3 == 0;
        struct Plane {
            std::array<double, 3> base, right, down;
        };
        std::vector<Plane> planes;
        const int faces = 1 + static_cast<int>(random() % 8);
        for (int f = 0; f < faces; ++f) {
            const auto vector = [&](double size) {
                return std::array{unit(random) * size, unit(random) * size, unit(random) * size};
            };
            const Plane plane{vector(40), vector(1), vector(1)};
            planes.push_back(plane);
            // Corners around the middle with random radii make re-entrant outlines; in random
            // places they make outlines that cross themselves.
            const int corners = 3 + static_cast<int>(random() % 7);
            const bool star = random() % 2 == 0;
            std::vector<int> numbers;
            for (int k = 0; k < corners; ++k) {
                const double angle = k * 2 * M_PI / corners;
                const double size = 60 * (1.05 + unit(random));
                const double u = star ? size * std::cos(angle) : 100 * unit(random);
                const double v = star ? size * std::sin(angle) : 100 * unit(random);
                const auto at = [&](std::size_t i) {
                    return plane.base[i] + u * plane.right[i] + v * plane.down[i];
                };
                numbers.push_back(mesh.np);
                addScreenPoint(mesh, at(0), at(1), at(2));
            }
            test::addFace(mesh, numbers);
        }
        if (faces > 4) mesh.faces[2].q = nullptr;

        const bool left = round % 2 == 0;
        const PanePlace place{left, unit(random) * 60, unit(random) * 60};
        int best = -1;
        double nearest = infinity;
        double second = infinity;
        bool clear = true; // nothing so near a border that rounding decides
        for (int f = 0; f < faces; ++f) {
            const Face& face = mesh.faces[f];
            if (face.q == nullptr || isHidden(face, left)) continue;
            // A vertical ray tells inside from outside.
            const auto c = outline(face, left);
            bool inside = false;
            for (std::size_t k = 0; k < c.size(); ++k) {
                const auto& a = c[k];
                const auto& b = c[(k + 1) % c.size()];
                if ((a[0] > place.x) == (b[0] > place.x)) continue;
                const double y = a[1] + (b[1] - a[1]) * (place.x - a[0]) / (b[0] - a[0]);
                if (std::abs(y - place.y) < 1e-6) clear = false;
                if (y > place.y) inside = !inside;
            }
            if (!inside) continue;
            const Plane& p = planes[static_cast<std::size_t>(f)];
            const auto normal = [&](std::size_t i) {
                const std::size_t j = (i + 1) % 3;
                const std::size_t k = (i + 2) % 3;
                return p.right[j] * p.down[k] - p.right[k] * p.down[j];
            };
            // sx, sy, sz are 0, 1, 2; what the pane does not show is to be found.
            const std::size_t across = left ? 0 : 2;
            const std::size_t away = 2 - across;
            if (std::abs(normal(away)) < 1e-3) clear = false;
            const double found =
                p.base[away]
                - (normal(across) * (place.x - p.base[across]) + normal(1) * (place.y - p.base[1]))
                      / normal(away);
            const double depth = left ? found : -found;
            if (depth < nearest) {
                second = nearest;
                nearest = depth;
                best = f;
            } else {
                second = std::min(second, depth);
            }
        }
        if (!clear || second - nearest < 1e-6) continue;
        ++decided;
        if (best >= 0) ++hits;
        ASSERT_EQ(faceAt(mesh, place), best) << "round " << round;
    }
    EXPECT_GT(decided, 2500);
    EXPECT_GT(hits, 800);
}

/// Faces of 1 to 5 corners on few points of a lattice, so that ties are frequent. Every sixth point
/// or so has a position that is no number, unless all must be `sane`.
void fillLattice(Mesh& mesh, std::mt19937& random, bool sane) {
    const int points = 3 + static_cast<int>(random() % 12);
    const auto coordinate = [&] {
        const auto die = random() % 40;
        if (die < 2 && !sane) return die == 0 ? nan : infinity;
        return static_cast<double>(die % 13) - 6;
    };
    test::fillRandom(mesh, random, points, 1 + static_cast<int>(random() % 9));
    for (int i = 0; i < mesh.np; ++i) {
        Point& p = mesh.points[i];
        p.sx = coordinate();
        p.sy = coordinate();
        p.sz = coordinate();
    }
}

bool isFinite(const std::array<double, 3>& v) {
    return std::all_of(v.begin(), v.end(), [](double x) { return std::isfinite(x); });
}

TEST_F(Picking, PointsAgreeWithTheRule) {
    std::mt19937 random(12);
    int hits = 0;
    for (int round = 0; round < 4000; ++round) {
        test::OwnMesh mesh;
        displayOptions.hideFacingAway = round % 3 == 0;
        fillLattice(mesh, random, displayOptions.hideFacingAway);
        const PanePlace place{round % 2 == 0, static_cast<double>(random() % 13) - 6,
                              static_cast<double>(random() % 13) - 6};
        const double radius = 5; // met exactly by 3, 4
        using Rank = std::array<double, 3>;
        Rank best{infinity, infinity, -1};
        for (int f = 0; f < mesh.nf; ++f) {
            const Face& face = mesh.faces[f];
            if (face.q == nullptr || isHidden(face, place.left)) continue;
            for (int k = 0; k < face.n; ++k) {
                const auto at = seen(*face.q[k].p, place.left);
                const double dx = at[0] - place.x;
                const double dy = at[1] - place.y;
                if (!isFinite(at) || dx * dx + dy * dy > radius * radius) continue;
                best = std::min(best, {at[2], dx * dx + dy * dy,
                                       static_cast<double>(indexIn(mesh.points, face.q[k].p))});
            }
        }
        if (best[2] >= 0) ++hits;
        ASSERT_EQ(pointAt(mesh, place, radius), static_cast<int>(best[2])) << "round " << round;
    }
    EXPECT_GT(hits, 2000);
    EXPECT_LT(hits, 3900);
}

TEST_F(Picking, EdgesAgreeWithTheRule) {
    std::mt19937 random(13);
    std::uniform_real_distribution<double> position(-7, 7);
    int hits = 0;
    for (int round = 0; round < 4000; ++round) {
        test::OwnMesh mesh;
        displayOptions.hideFacingAway = round % 3 == 0;
        fillLattice(mesh, random, displayOptions.hideFacingAway);
        // Half of the places are as far from one end of many an edge as from the other.
        const auto coordinate = [&] {
            const double x = position(random);
            return round % 4 < 2 ? x : std::round(x * 2) / 2;
        };
        const PanePlace place{round % 2 == 0, coordinate(), coordinate()};
        const double radius = 1.07; // no edge of the lattice is just as far away
        // Distance and depth of an edge by the parameter of the point next to the place.
        const auto measure = [&](const Face& face, int k) {
            const auto a = seen(*face.q[k].p, place.left);
            const auto b = seen(*face.q[(k + 1) % face.n].p, place.left);
            if (!isFinite(a) || !isFinite(b)) return std::array{infinity, infinity};
            const double dx = b[0] - a[0];
            const double dy = b[1] - a[1];
            const double length = dx * dx + dy * dy;
            if (length == 0) {
                return std::array{std::hypot(a[0] - place.x, a[1] - place.y), std::min(a[2], b[2])};
            }
            const double along = (place.x - a[0]) * dx + (place.y - a[1]) * dy;
            const double t = std::clamp(along / length, 0.0, 1.0);
            return std::array{std::hypot(a[0] + t * dx - place.x, a[1] + t * dy - place.y),
                              a[2] + t * (b[2] - a[2])};
        };
        double nearest = infinity;
        for (int f = 0; f < mesh.nf; ++f) {
            const Face& face = mesh.faces[f];
            if (face.q == nullptr || isHidden(face, place.left)) continue;
            for (int k = 0; k < face.n; ++k) {
                const auto [distance, depth] = measure(face, k);
                if (distance <= radius) nearest = std::min(nearest, depth);
            }
        }
        const PickedEdge found = edgeAt(mesh, place, radius);
        ASSERT_EQ(found.face >= 0, nearest < infinity) << "round " << round;
        if (found.face < 0) continue;
        ++hits;
        const Face& face = mesh.faces[found.face];
        ASSERT_TRUE(face.q != nullptr && !isHidden(face, place.left));
        const auto [distance, depth] = measure(face, found.corner);
        ASSERT_LE(distance, radius);
        ASSERT_NEAR(depth, nearest, 1e-9) << "round " << round;
        // Of the sides that lie on this edge it is the first.
        const Point* const a = face.q[found.corner].p;
        const Point* const b = face.q[(found.corner + 1) % face.n].p;
        for (int f = 0; f <= found.face; ++f) {
            const Face& other = mesh.faces[f];
            if (other.q == nullptr || isHidden(other, place.left)) continue;
            for (int k = 0; k < (f == found.face ? found.corner : other.n); ++k) {
                const Point* const c = other.q[k].p;
                const Point* const d = other.q[(k + 1) % other.n].p;
                ASSERT_FALSE((a == c && b == d) || (a == d && b == c)) << "round " << round;
            }
        }
    }
    EXPECT_GT(hits, 700);
    EXPECT_LT(hits, 3900);
}

TEST_F(Picking, BetweenFacesThereIsNoGap) {
    // Triangles around points in a square; places on their edges and corners are in one of them.
    test::OwnMesh mesh;
    for (int row = 0; row < 5; ++row) {
        for (int column = 0; column < 5; ++column) addScreenPoint(mesh, column * 7, row * 3, 0);
    }
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            const int a = 5 * row + column;
            test::addFace(mesh, {a, a + 1, a + 6});
            test::addFace(mesh, {a + 6, a + 5, a});
        }
    }
    for (int x = 0; x < 28 * 6; ++x) {
        for (int y = 0; y < 12 * 6; ++y) ASSERT_NE(faceAt(mesh, {true, x / 6.0, y / 6.0}), -1);
    }
}

TEST_F(Picking, TheDepthOfABentFaceIsThatOfTheNearestParts) {
    struct Row {
        double x, depth; ///< of the place, and of a flat face that the bent one is compared with
        int face;
    };
    // A U whose left prong is at depth 0 and its right one at depth 10.
    const std::vector<std::array<double, 3>> bent = {{0, 0, 0},  {2, 0, 0},  {2, 8, 0},  {6, 8, 10},
                                                     {6, 0, 10}, {8, 0, 10}, {8, 9, 10}, {0, 9, 0}};
    const Row rows[] = {{1, 1, 0}, {1, -1, 1}, {4, 20, 1}, {7, 9, 1}, {7, 11, 0}};
    for (const Row& row : rows) {
        test::OwnMesh mesh;
        for (const auto& [x, y, z] : bent) addScreenPoint(mesh, x, y, z);
        test::addFace(mesh, {0, 1, 2, 3, 4, 5, 6, 7});
        for (const int x : {-9, 19}) {
            for (const int y : {-9, 19}) addScreenPoint(mesh, x, y, row.depth);
        }
        test::addFace(mesh, {8, 9, 11, 10});
        EXPECT_EQ(faceAt(mesh, {true, row.x, 4}), row.face) << row.x << ' ' << row.depth;
    }
}

TEST_F(Picking, OddPositionsDoNoHarm) {
    struct Row {
        const char* what;
        std::array<double, 3> corners[3];
        int face, point, edge; ///< at (0, 0): the edge is given by its corner
    };
    const Row rows[] = {
        {"ordinary", {{-9, -9, 1}, {9, -9, 1}, {0, 9, 1}}, 0, -1, -1},
        {"far corners", {{-1e15, -9, 1}, {1e15, -9, 1}, {0, 1e15, 1}}, 0, -1, -1},
        {"hardly to be reckoned", {{-1e300, -9, 1}, {1e300, -9, 1}, {0, 1e300, 1}}, 0, -1, -1},
        {"an edge from here to far away", {{0, 0, 1}, {1e12, 1e12, 1}, {9, 99, 1}}, -1, 0, 0},
        {"an edge right across", {{-1e12, 0, 1}, {1e12, 0, 1}, {0, -99, 1}}, -1, -1, 0},
        {"seen edge-on", {{0, -9, 1}, {0, 9, 1}, {0, 9, 8}}, -1, -1, 0},
        {"infinite to the right", {{-9, 9, 1}, {infinity, 9, 1}, {0, -9, 1}}, -1, -1, -1},
        {"NaN", {{-9, -9, 1}, {nan, -9, 1}, {0, 0, 1}}, -1, 2, 2},
        {"NaN depth", {{0, 0, nan}, {9, -9, 1}, {0, 9, 1}}, -1, -1, -1},
        {"infinite", {{-9, -9, 1}, {infinity, -9, 1}, {0, infinity, 1}}, -1, -1, -1},
        {"infinite depth", {{-9, -9, -infinity}, {9, -9, 1}, {0, 1, 1}}, -1, 2, 1},
    };
    for (const Row& row : rows) {
        test::OwnMesh mesh;
        for (const auto& [x, y, z] : row.corners) addScreenPoint(mesh, x, y, z);
        test::addFace(mesh, {0, 1, 2});
        EXPECT_EQ(faceAt(mesh, {true, 0, 0}), row.face) << row.what;
        EXPECT_EQ(pointAt(mesh, {true, 0, 0}, 2), row.point) << row.what;
        EXPECT_EQ(edgeAt(mesh, {true, 0, 0}, 2).corner, row.edge) << row.what;
        mesh.faces[0].q = nullptr;
        EXPECT_EQ(faceAt(mesh, {true, 0, 0}), -1) << row.what;
        EXPECT_EQ(pointAt(mesh, {true, 0, 0}, 2), -1) << row.what;
    }
}

} // namespace
} // namespace polyfab
