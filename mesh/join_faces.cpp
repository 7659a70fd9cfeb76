// SPDX-License-Identifier: GPL-3.0-or-later
// The corners of both faces are a ring each. Where the first runs along the common edges from A to
// B, the second runs from B to A; the whole is the first from B round to A and the second from A
// round to B.
#include "mesh/join_faces.h"

#include "mesh/faces.h"

#include <algorithm>

namespace polyfab {
namespace {

/// The corner at this place of the face; places go round.
const FaceCorner& cornerAt(const Face& face, int place) {
    return face.q[(place % face.n + face.n) % face.n];
}

/// A run of common edges: the places of its first point in the one and in the other face.
struct Run {
    int first;
    int second;
    int edges;
};

/// The longest run around this edge. At most as many edges as the smaller face has.
Run commonRun(const Face& one, const Face& other, int oneCorner, int otherCorner) {
    Run run{oneCorner, otherCorner + 1, 1};
    const int most = std::min(one.n, other.n);
    const auto same = [&](int first, int second) {
        return cornerAt(one, first).p == cornerAt(other, second).p;
    };
    while (run.edges < most && same(run.first + run.edges + 1, run.second - run.edges - 1)) {
        ++run.edges;
    }
    while (run.edges < most && same(run.first - 1, run.second + 1)) {
        --run.first;
        ++run.second;
        ++run.edges;
    }
    return run;
}

FaceCorner* copyRing(FaceCorner* to, const Face& face, int start, int count) {
    for (int k = 0; k < count; ++k) *to++ = cornerAt(face, start + k);
    return to;
}

} // namespace

std::vector<Side> otherSides(const Mesh& mesh, const Side& side) {
    const Face& own = mesh.faces[side.face];
    const Point* const a = own.q[side.corner].p;
    const Point* const b = cornerAt(own, side.corner + 1).p;
    std::vector<Side> found;
    for (const Face& face : liveFaces(mesh)) {
        for (const auto& [from, to] : sides(face)) {
            if (from.p != a && from.p != b) continue;
            if (to.p != (from.p == a ? b : a)) continue;
            found.push_back({indexIn(mesh.faces, &face), indexIn(face.q, &from)});
        }
    }
    std::erase_if(found,
                  [&](const Side& s) { return s.face == side.face && s.corner == side.corner; });
    return found;
}

const char* joinFaces(Mesh& mesh, const Side& keep, const Side& other) {
    if (keep.face == other.face) return "both sides of this edge are the same face";
    Face one = mesh.faces[keep.face];
    Face two = mesh.faces[other.face];
    if (cornerAt(one, keep.corner).p != cornerAt(two, other.corner + 1).p) {
        return "the two faces on this edge do not run the same way";
    }
    const Run run = commonRun(one, two, keep.corner, other.corner);
    const int n = one.n + two.n - 2 * run.edges;
    if (n < 3) return "the two faces on this edge cover each other";
    if (n > maxIndexed) return "a face can have at most 32767 corners";
    if (!mesh.growCorners(std::int64_t{mesh.nq} + n, false)) return "there is no room";

    one.q = mesh.faces[keep.face].q; // the corners may have moved
    two.q = mesh.faces[other.face].q;
    FaceCorner* const whole = mesh.corners + mesh.nq;
    mesh.nq += n;
    FaceCorner* const half = copyRing(whole, one, run.first + run.edges, one.n - run.edges);
    copyRing(half, two, run.second, two.n - run.edges);
    mesh.faces[keep.face].q = whole;
    mesh.faces[keep.face].n = static_cast<std::int16_t>(n);
    mesh.faces[other.face].q = nullptr;
    if (mesh.curface == other.face) mesh.curface = keep.face;
    mesh.changed = 1;
    return nullptr;
}

} // namespace polyfab
