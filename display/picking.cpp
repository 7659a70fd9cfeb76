// SPDX-License-Identifier: GPL-3.0-or-later
// Two passes in the order of memory, one over the points and one over the corners, rule nearly all
// faces out: their corners all lie beyond the same side of the square around the place. Only what
// is left is looked at closely.
//
// A face is met by the horizontal line through the place (the even-odd rule of scan conversion).
// Its depth there is interpolated between the two crossings next to the place: that is the depth of
// its plane when it is flat, whatever its outline, and stays on its span when it is not.
#include "display/picking.h"

#include "display/options.h"
#include "display/view.h"
#include "mesh/faces.h"
#include "mesh/table.h"

#include <algorithm>
#include <cmath>
#include <compare>
#include <limits>
#include <utility>

namespace polyfab {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

/// A point as a pane shows it. The viewer of the left pane looks along z and that of the right one,
/// on the right side of the object, against x.
struct Seen {
    double x, y;
    double depth; ///< grows away from the viewer

    Seen(const Point& p, bool left) : x(left ? p.sx : p.sz), y(p.sy), depth(left ? p.sz : -p.sx) {}
    bool isFinite() const { return std::isfinite(x) && std::isfinite(y) && std::isfinite(depth); }
    /// Squared pixels.
    double awayFrom(const PanePlace& place) const {
        return (x - place.x) * (x - place.x) + (y - place.y) * (y - place.y);
    }
    auto operator<=>(const Seen&) const = default;
};

/// The smaller one is the better find.
struct Near {
    double depth = infinity;
    double distance = infinity; ///< squared pixels from the place
    auto operator<=>(const Near&) const = default;
};

/// The sides of the square around the place that a point lies beyond. A NaN lies beyond none.
std::uint8_t sidesBeyond(const Seen& p, const PanePlace& place, double radius) {
    return static_cast<std::uint8_t>(
        (p.x < place.x - radius ? 1 : 0) | (p.x > place.x + radius ? 2 : 0)
        | (p.y < place.y - radius ? 4 : 0) | (p.y > place.y + radius ? 8 : 0));
}

/// Hands out, in order, the numbers of the shown faces that may reach into the square.
template <typename Use>
void eachFaceNear(const Mesh& mesh, const PanePlace& place, double radius, Use use) {
    Table<std::uint8_t> beyond(mesh.np);
    if (!beyond) return;
    for (int i = 0; i < mesh.np; ++i) {
        beyond[i] = sidesBeyond({mesh.points[i], place.left}, place, radius);
    }
    for (int i = 0; i < mesh.nf; ++i) {
        const Face& face = mesh.faces[i];
        // Where faces have no order their corners are far apart; they are called for in time.
        const Face& soon = mesh.faces[std::min(i + 16, mesh.nf - 1)];
        if (isLive(soon)) {
            __builtin_prefetch(soon.q);
            __builtin_prefetch(soon.q + soon.n - 1);
        }
        if (!isLive(face)) continue;
        unsigned common = 15;
        for (const FaceCorner& corner : corners(face)) common &= beyond[pointOf(mesh, corner)];
        if (common == 0 && isShown(face, place.left)) use(i);
    }
}

/// Hands out the numbers of the points that no live face uses.
template <typename Use>
void eachUnusedPoint(const Mesh& mesh, Use use) {
    Table<std::uint8_t> used(mesh.np, 0);
    if (!used) return;
    for (const Face& face : liveFaces(mesh)) {
        for (const FaceCorner& corner : corners(face)) used[pointOf(mesh, corner)] = 1;
    }
    for (int i = 0; i < mesh.np; ++i) {
        if (used[i] == 0) use(i);
    }
}

/// How near the edge between these ends comes to the place. Both directions of an edge give the
/// same figures to the last bit.
Near passing(Seen a, Seen b, const PanePlace& place) {
    double away = a.awayFrom(place);
    const double other = b.awayFrom(place);
    // From the end that is near, a far one takes little accuracy away.
    if (other < away || (other == away && b < a)) {
        std::swap(a, b);
        away = other;
    }
    const double length = std::hypot(b.x - a.x, b.y - a.y);
    if (length == 0) return {a.depth, away}; // seen end-on: that is the nearer one
    const double right = (b.x - a.x) / length;
    const double down = (b.y - a.y) / length;
    const double along = (place.x - a.x) * right + (place.y - a.y) * down;
    if (!(along > 0)) return {a.depth, away};
    const double across = (place.x - a.x) * down - (place.y - a.y) * right;
    return {a.depth + (b.depth - a.depth) * (along / length), across * across};
}

struct Crossing {
    double x;
    double depth;
};

/// Depth of the face at the place; infinity when the place is not inside.
double depthAt(const Face& face, const PanePlace& place) {
    Crossing left{-infinity, 0};
    Crossing right{infinity, 0};
    bool inside = false;
    for (const auto& [from, to] : sides(face)) {
        Seen high(*from.p, place.left);
        Seen low(*to.p, place.left);
        if (!high.isFinite()) return infinity;
        // Neighbouring faces cross their common edge at the same position, as both take it
        // downwards: a place is in exactly one of them.
        if (low.y < high.y) std::swap(low, high);
        if (!(high.y <= place.y && place.y < low.y)) continue;
        const double share = (place.y - high.y) / (low.y - high.y);
        const Crossing met{high.x + share * (low.x - high.x),
                           high.depth + share * (low.depth - high.depth)};
        if (met.x > place.x) {
            inside = !inside;
            if (met.x < right.x) right = met;
        } else if (met.x >= left.x) {
            left = met;
        }
    }
    if (!inside) return infinity;
    const double share = (place.x - left.x) / (right.x - left.x);
    return left.depth + share * (right.depth - left.depth);
}

} // namespace

std::optional<PanePlace> placeInPane(Size client, int x, int y) {
    const Panes panes = panesOf(client);
    if (x < 0 || y < 0 || y >= panes.height) return std::nullopt;
    if (x < panes.leftWidth) return PanePlace{true, double(x), double(y)};
    const int across = x - panes.rightStart;
    if (across < 0 || across >= panes.rightWidth) return std::nullopt;
    return PanePlace{false, double(across), double(y)};
}

int pointAt(const Mesh& mesh, const PanePlace& place, double radius, int except) {
    int found = -1;
    Near best;
    const auto consider = [&](int index) {
        const Seen seen(mesh.points[index], place.left);
        const Near near{seen.depth, seen.awayFrom(place)};
        if (!seen.isFinite() || near.distance > radius * radius || index == except) return;
        if (near < best || (near == best && index < found)) {
            best = near;
            found = index;
        }
    };
    eachFaceNear(mesh, place, radius, [&](int i) {
        for (const FaceCorner& corner : corners(mesh.faces[i])) consider(pointOf(mesh, corner));
    });
    if (displayOptions.vertexes) eachUnusedPoint(mesh, consider);
    return found;
}

PickedEdge edgeAt(const Mesh& mesh, const PanePlace& place, double radius) {
    PickedEdge found;
    Near best;
    eachFaceNear(mesh, place, radius, [&](int i) {
        const Face& face = mesh.faces[i];
        for (const FaceSide& side : sides(face)) {
            const Seen from(*side.from.p, place.left);
            const Seen to(*side.to.p, place.left);
            if (!from.isFinite() || !to.isFinite()) continue;
            if (std::min(from.depth, to.depth) > best.depth) continue;
            const Near near = passing(from, to, place);
            if (near.distance <= radius * radius && near < best) {
                best = near;
                found = {i, indexIn(face.q, &side.from)};
            }
        }
    });
    return found;
}

int faceAt(const Mesh& mesh, const PanePlace& place) {
    int found = -1;
    double best = infinity;
    eachFaceNear(mesh, place, 0, [&](int i) {
        const double depth = depthAt(mesh.faces[i], place);
        if (depth < best) {
            best = depth;
            found = i;
        }
    });
    return found;
}

} // namespace polyfab
