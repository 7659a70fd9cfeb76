// SPDX-License-Identifier: GPL-3.0-or-later
// The thorough tool looks for partners along chains: all sides on the same edge are linked in the
// order of faces, so that what follows a side of a triangle are the triangles behind it that share
// that edge, the next one first. Sides of triangles that went are unlinked when they are met. Only
// where very many triangles lie on one edge and do not fit does each walk past all the others.
#include "tools/detriangularize.h"

#include "geometry/vec3.h"
#include "mesh/edges.h"
#include "mesh/face_angle.h"
#include "mesh/faces.h"
#include "mesh/table.h"
#include "platform/platform.h"
#include "tools/collect.h"
#include "tools/delete_faces.h"
#include "workbench/long_work.h"
#include "workbench/prompts.h"
#include "workbench/title.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace polyfab {
namespace {

bool isTriangle(const Face& face) { return isLiveSelected(face) && face.n == 3; }

/// Two triangles and a side of each.
struct Pair {
    Face* a;
    Face* b;
    int sideA, sideB;

    /// The corner so many places after the start of the side.
    const FaceCorner& ofA(int k) const { return a->q[(sideA + k) % 3]; }
    const FaceCorner& ofB(int k) const { return b->q[(sideB + k) % 3]; }

    bool sameKind() const { return a->g == b->g && a->mat == b->mat; }
    bool sidesMeet() const { return ofA(0).p == ofB(1).p && ofA(1).p == ofB(0).p; }
    bool textureMeets() const { return ofA(0).t == ofB(1).t && ofA(1).t == ofB(0).t; }

    /// Makes A the quad, with its corners at `place`, and deletes B.
    void join(const std::array<FaceCorner, 4>& quad, FaceCorner* place) const {
        std::copy(quad.begin(), quad.end(), place);
        a->q = place;
        a->n = 4;
        b->q = nullptr;
        b->selected = 0;
    }
};

double askLargestAngle() {
    return askNumber("max angle (deg) allowed between faces to be joined?", "4");
}

bool prepare(Mesh& mesh) {
    if (!collectForTool(mesh)) return false;
    mesh.changed = 1;
    return mesh.growFaces(std::int64_t{mesh.nf} + mesh.nf / 2 + 16, false)
           && mesh.growCorners(2 * std::int64_t{mesh.nq}, false);
}

void removeAllNormals(Mesh& mesh) {
    for (std::int32_t c = 0; c < mesh.nq; ++c) mesh.corners[c].d = nullptr;
    farfree(&mesh.normals);
    mesh.nd = mesh.ndmax = 0;
}

void report(Mesh& mesh, std::int32_t before, std::int32_t after) {
    const std::string caption =
        "there were " + std::to_string(before) + " faces; now there are " + std::to_string(after);
    if (mesh.nd == 0) return platform().message(caption, "", Icon::none);
    const char* const text = "shall I remove the normals (vn lines) to save more space?";
    if (platform().question(caption, text, Buttons::yesNo) == Choice::yes) removeAllNormals(mesh);
}

/// The first side of B at which the two meet, whether the texture does or not.
std::optional<Pair> meeting(Face& a, Face& b) {
    for (int sideB = 0; sideB < 3; ++sideB) {
        for (int sideA = 0; sideA < 3; ++sideA) {
            const Pair pair{&a, &b, sideA, sideB};
            if (pair.sidesMeet()) return pair;
        }
    }
    return std::nullopt;
}

bool joinNeighbours(Face& a, Face& b, double largestAngle) {
    // The quad takes the place of A's three corners and the one behind them.
    if (!isTriangle(a) || !isTriangle(b) || b.q != a.q + 3) return false;
    const std::optional<Pair> pair = meeting(a, b);
    if (!pair || !pair->sameKind() || !pair->textureMeets() || pair->ofB(2).p == pair->ofA(2).p
        || !(angleBetween(faceNormal(b), faceNormal(a)) <= largestAngle)) {
        return false;
    }
    pair->join({pair->ofB(0), pair->ofA(2), pair->ofB(1), pair->ofB(2)}, a.q);
    return true;
}

/// Angle at b between a and c, 0 to pi; pi when b is one of them, or so near that the square of the
/// distance vanishes. NaN if a position is not finite.
double vertexAngle(const Point& a, const Point& b, const Point& c) {
    const double toA = squaredDistance(b, a), toC = squaredDistance(b, c);
    if (toA == 0 || toC == 0) return pi;
    return angleOpposite(squaredDistance(a, c), toA, toC);
}

/// Behind all sides.
constexpr std::int32_t noSide = INT32_MAX;

struct Limits {
    double angle;      ///< between the triangles, in degrees
    double fromSquare; ///< of the quad's new angles from 90 degrees, in radians
};

class ThoroughJoiner {
  public:
    ThoroughJoiner(Mesh& joined, const Limits& asked)
        : mesh(joined), limits(asked),
          leastCosine(std::cos(std::min(asked.angle, 180.0) * pi / 180) - 1e-9), normal(joined.nf),
          next(3 * std::int64_t{joined.nf}, noSide) {}

    /// Works out the normals and links all sides. False without memory.
    bool makeTables();

    /// Lets the triangle have its turn; whether it was joined.
    bool joinOne(std::int32_t face);

  private:
    template <typename Use>
    void eachSide(Use use) const;
    Pair pairOf(std::int32_t sideA, std::int32_t sideB) const {
        return {mesh.faces + sideA / 3, mesh.faces + sideB / 3, sideA % 3, sideB % 3};
    }
    bool linkSides();
    std::int32_t nextMatch(std::int32_t side, std::int32_t after);
    bool areFlat(const Vec3& a, const Vec3& b) const;
    bool isNearlyRight(const FaceCorner& a, const FaceCorner& b, const FaceCorner& c) const {
        return std::abs(vertexAngle(*a.p, *b.p, *c.p) - pi / 2) <= limits.fromSquare;
    }

    Mesh& mesh;
    Limits limits;
    double leastCosine;       ///< no angle with a lower one is within the limit
    Table<Vec3> normal;       ///< of each triangle in question
    Table<std::int32_t> next; ///< of side 3 * face + place: the next one on its edge
};

/// Calls use(side, lower point, higher point) for the sides of the triangles in question.
template <typename Use>
void ThoroughJoiner::eachSide(Use use) const {
    for (const Face& face : FacesThat<const Face, isTriangle>(mesh)) {
        std::int32_t side = 3 * indexIn(mesh.faces, &face);
        for (const auto& [from, to] : sides(face)) {
            const auto [low, high] = std::minmax({pointOf(mesh, from), pointOf(mesh, to)});
            use(side++, low, high);
        }
    }
}

/// The sides are sorted by their lower points, in the order of faces at each point; `last` has for
/// each point the place of the last side that went there as its higher one.
bool ThoroughJoiner::linkSides() {
    struct Side {
        std::int32_t number, high;
    };
    Table<Side> sides(3 * std::int64_t{mesh.nf});
    Table<std::int32_t> end(mesh.np, 0), last(mesh.np, -1);
    if (!sides || !end || !last) return false;
    eachSide([&](std::int32_t, std::int32_t low, std::int32_t) { ++end[low]; });
    std::int32_t start = 0;
    for (std::int32_t i = 0; i < mesh.np; ++i) end[i] = std::exchange(start, start + end[i]);
    eachSide([&](std::int32_t number, std::int32_t low, std::int32_t high) {
        sides[end[low]++] = {number, high};
    });
    std::int32_t s = 0;
    for (std::int32_t low = 0; low < mesh.np; ++low) {
        for (const std::int32_t first = s; s < end[low]; ++s) {
            std::int32_t& before = last[sides[s].high];
            if (before >= first) next[sides[before].number] = sides[s].number;
            before = s;
        }
    }
    return true;
}

bool ThoroughJoiner::makeTables() {
    if (!normal || !next || !linkSides()) return false;
    for (const Face& face : FacesThat<const Face, isTriangle>(mesh)) {
        normal[indexIn(mesh.faces, &face)] = faceNormal(face);
    }
    return true;
}

/// Where very many faces share an edge, the product saves nearly all arc cosines. It is 0 when a
/// face has no normal, which makes any angle 0.
bool ThoroughJoiner::areFlat(const Vec3& a, const Vec3& b) const {
    const double product = dot(a, b);
    if (product != 0 && product < leastCosine) return false;
    return angleBetween(b, a) <= limits.angle;
}

/// The first side on the chain behind `after` that pairs with `side`.
std::int32_t ThoroughJoiner::nextMatch(std::int32_t side, std::int32_t after) {
    for (;;) {
        const std::int32_t found = next[after];
        if (found == noSide) return noSide;
        const Pair pair = pairOf(side, found);
        if (!isLive(*pair.b)) {
            next[after] = next[found];
            continue;
        }
        if (pair.sameKind() && pair.sidesMeet() && pair.textureMeets()) return found;
        after = found;
    }
}

bool ThoroughJoiner::joinOne(std::int32_t face) {
    const std::int32_t first = 3 * face;
    std::int32_t match[3];
    for (int k = 0; k < 3; ++k) match[k] = nextMatch(first + k, first + k);
    for (;;) {
        // A triangle on the same points meets this one at several sides: the first of its own
        // counts.
        const std::int32_t* const nearest = std::min_element(match, match + 3);
        if (*nearest == noSide) return false;
        const auto side = first + static_cast<std::int32_t>(nearest - match);
        const Pair pair = pairOf(side, *nearest);
        const std::array quad{pair.ofB(1), pair.ofB(2), pair.ofB(0), pair.ofA(2)};
        if (areFlat(normal[face], normal[*nearest / 3]) && isNearlyRight(quad[1], quad[0], quad[3])
            && isNearlyRight(quad[1], quad[2], quad[3])) {
            pair.join(quad, mesh.corners + mesh.nq);
            mesh.nq += 4;
            return true;
        }
        const std::int32_t behind = *nearest / 3 * 3 + 3;
        for (int k = 0; k < 3; ++k) {
            if (match[k] < behind) match[k] = nextMatch(first + k, match[k]);
        }
    }
}

} // namespace

void detriquick(Mesh& mesh, bool silent) {
    const double largestAngle = askLargestAngle();
    if (!prepare(mesh)) return;
    std::int32_t left = mesh.nf;
    LoopProgress progress(mesh.nf);
    for (std::int32_t i = 1; i < mesh.nf; ++i) {
        progress.step();
        left -= joinNeighbours(mesh.faces[i - 1], mesh.faces[i], largestAngle);
    }
    noteDeletedFaces(mesh);
    if (silent) return;
    report(mesh, mesh.nf, left);
    checkEdges(mesh, false, false, false);
}

void detrithorough(Mesh& mesh, bool silent) {
    const double largestAngle = askLargestAngle();
    const double variation =
        askNumber("max angle (deg) variation from 90º allowed for new angles?", "20");
    if (!prepare(mesh)) return;
    std::optional<SavedTitle> title;
    if (!silent) title.emplace(512);
    ThoroughJoiner joiner(mesh, {largestAngle, variation * pi / 180});
    if (!joiner.makeTables()) return;
    std::int32_t left = mesh.nf;
    LoopProgress progress(mesh.nf);
    for (std::int32_t i = 0; i < mesh.nf - 1; ++i) {
        progress.step();
        if (!isTriangle(mesh.faces[i])) continue;
        if ((mesh.nf - i) % 100 == 0) showTitle("%d", mesh.nf - i);
        left -= joiner.joinOne(i);
    }
    noteDeletedFaces(mesh);
    if (silent) return;
    report(mesh, mesh.nf, left);
    title.reset();
    checkEdges(mesh, false, false, false);
}

} // namespace polyfab
