// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/split_face.h"

#include "mesh/faces.h"

#include <algorithm>
#include <cstdlib>
#include <optional>

namespace polyfab {
namespace {

/// The first diagonal of the face from a corner at one point to a corner at the other; a face may
/// pass a point more than once.
std::optional<Diagonal> diagonalOf(const Mesh& mesh, const Face& face, const Point* a,
                                   const Point* b) {
    for (int i = 0; i < face.n; ++i) {
        if (face.q[i].p != a) continue;
        for (int k = 0; k < face.n; ++k) {
            const int apart = std::abs(i - k);
            if (face.q[k].p == b && apart > 1 && apart < face.n - 1) {
                return Diagonal{indexIn(mesh.faces, &face), std::min(i, k), std::max(i, k)};
            }
        }
    }
    return std::nullopt;
}

} // namespace

std::vector<Diagonal> diagonalsBetween(const Mesh& mesh, int point1, int point2) {
    std::vector<Diagonal> found;
    for (const Face& face : liveFaces(mesh)) {
        if (const auto diagonal =
                diagonalOf(mesh, face, mesh.points + point1, mesh.points + point2)) {
            found.push_back(*diagonal);
        }
    }
    return found;
}

bool splitFace(Mesh& mesh, const Diagonal& diagonal) {
    const auto [index, from, to] = diagonal;
    const int n = to - from + 1;
    if (!mesh.growCorners(std::int64_t{mesh.nq} + n, false)
        || !mesh.growFaces(std::int64_t{mesh.nf} + 1, false)) {
        return false;
    }
    Face& rest = mesh.faces[index];
    Face& piece = mesh.faces[mesh.nf++];
    piece = rest;
    piece.q = mesh.corners + mesh.nq;
    piece.n = static_cast<std::int16_t>(n);
    mesh.nq += n;
    std::copy(rest.q + from, rest.q + to + 1, piece.q);
    std::copy(rest.q + to, rest.q + rest.n, rest.q + from + 1);
    rest.n = static_cast<std::int16_t>(rest.n - n + 2);
    rest.q[from].edgeuse = piece.q[n - 1].edgeuse = 2; // the new edge
    mesh.changed = 1;
    return true;
}

} // namespace polyfab
