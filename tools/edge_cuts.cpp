// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/edge_cuts.h"

#include "mesh/faces.h"
#include "mesh/stale.h"
#include "platform/platform.h"
#include "workbench/state.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace polyfab {
namespace {

double mixed(double from, double to, double part) { return from + (to - from) * part; }

/// The element of this number: one of the mesh, or behind those a new one.
template <typename T>
T elementOf(const T* array, std::int32_t count, const std::vector<T>& added, std::int32_t number) {
    return number < count ? array[number] : added[static_cast<std::size_t>(number - count)];
}

template <typename T>
std::int32_t append(std::vector<T>& added, std::int32_t count, const T& element) {
    added.push_back(element);
    return count + static_cast<std::int32_t>(added.size()) - 1;
}

template <typename T>
T* reference(T* array, std::int32_t number) {
    return number < 0 ? nullptr : array + number;
}

} // namespace

DraftCorner draftCorner(const Mesh& mesh, const FaceCorner& corner) {
    return {pointOf(mesh, corner), corner.t != nullptr ? indexIn(mesh.texcoords, corner.t) : -1,
            corner.d != nullptr ? indexIn(mesh.normals, corner.d) : -1, corner.edgeuse};
}

std::int32_t MeshDraft::addPoint(const Vec3& at) { return append(points, mesh.np, at); }

std::int32_t MeshDraft::addTexCoord(const TexCoord& added) {
    return append(texcoords, mesh.nt, added);
}

std::int32_t MeshDraft::addNormal(const Normal& added) { return append(normals, mesh.nd, added); }

TexCoord MeshDraft::texCoord(std::int32_t number) const {
    return elementOf(mesh.texcoords, mesh.nt, texcoords, number);
}

Normal MeshDraft::normal(std::int32_t number) const {
    return elementOf(mesh.normals, mesh.nd, normals, number);
}

std::int32_t MeshDraft::addTexCoordBetween(std::int32_t from, std::int32_t to, double part) {
    const TexCoord a = texCoord(from), b = texCoord(to);
    return addTexCoord({mixed(a.u, b.u, part), mixed(a.v, b.v, part), 0, 1});
}

std::int32_t MeshDraft::addNormalBetween(std::int32_t from, std::int32_t to, double part) {
    const Normal a = normal(from), b = normal(to);
    return addNormal({mixed(a.x, b.x, part), mixed(a.y, b.y, part), mixed(a.z, b.z, part)});
}

Vec3 MeshDraft::place(std::int32_t point) const {
    return point < mesh.np ? worldPosition(mesh.points[point])
                           : points[static_cast<std::size_t>(point - mesh.np)];
}

void MeshDraft::addPiece(std::int32_t face, std::span<const DraftCorner> corners) {
    addFace(mesh.faces[face], corners);
    pieces.back().face = face;
    pieces.back().further = face == lastFace;
    if (face != lastFace) --newFaces;
    lastFace = face;
}

void MeshDraft::addFace(const Face& attributes, std::span<const DraftCorner> corners) {
    const auto n = static_cast<std::int32_t>(corners.size());
    tooLarge |= n > maxIndexed;
    pieces.push_back({-1, n, true, attributes});
    pieceCorners.insert(pieceCorners.end(), corners.begin(), corners.end());
    ++newFaces;
}

bool MeshDraft::makeRoom(Mesh& target) const {
    const auto more = [](std::int32_t count, const auto& added) {
        return std::int64_t{count} + std::ssize(added);
    };
    return target.growPoints(more(target.np, points), false) != 0
           && (texcoords.empty() || target.growTexCoords(more(target.nt, texcoords), false) != 0)
           && (normals.empty() || target.growNormals(more(target.nd, normals), false) != 0)
           && target.growCorners(more(target.nq, pieceCorners), false) != 0
           && target.growFaces(target.nf + newFaces, false) != 0;
}

void MeshDraft::enterElements(Mesh& target) const {
    for (const Vec3& at : points) target.addPoint(at.x, at.y, at.z, false);
    for (const TexCoord& t : texcoords) target.texcoords[target.nt++] = t;
    for (const Normal& d : normals) target.normals[target.nd++] = d;
}

bool MeshDraft::install(Mesh& target) const {
    if (tooLarge) {
        platform().message("too many corners", "a face can have at most 32767 corners",
                           Icon::exclamation);
        return false;
    }
    if (pieces.empty()) return true;
    if (!makeRoom(target)) return false;
    enterElements(target);
    const DraftCorner* corner = pieceCorners.data();
    for (const Piece& piece : pieces) {
        if (piece.face >= 0 && piece.face == workbench.currentEdgeFace) forgetCurrentEdge();
        if (piece.face >= 0 && piece.face == target.curface && piece.further) target.curface = -1;
        Face& face = target.faces[piece.further ? target.nf++ : piece.face];
        face = piece.attributes;
        face.q = target.corners + target.nq;
        face.n = static_cast<std::int16_t>(piece.n);
        for (std::int32_t k = 0; k < piece.n; ++k, ++corner) {
            target.corners[target.nq++] = {
                target.points + corner->p, reference(target.normals, corner->d),
                reference(target.texcoords, corner->t), corner->edgeuse, 0};
        }
    }
    target.changed = 1;
    stale.points = stale.edges = true;
    return true;
}

std::int32_t EdgeCuts::find(std::int32_t a, std::int32_t b) const {
    if (edges.empty()) return none;
    const auto [low, high] = std::minmax(a, b);
    return slots.find(hashOfNumbers(low, high), [&, l = low, h = high](std::int32_t number) {
        const CutEdge& edge = edges[static_cast<std::size_t>(number)];
        return edge.low == l && edge.high == h;
    });
}

bool EdgeCuts::isCut(std::int32_t a, std::int32_t b) const { return find(a, b) != none; }

/// All edges found so far are entered anew in more slots.
void EdgeCuts::makeSlots() {
    slots.reset(std::max<std::size_t>(1024, 4 * edges.size()));
    for (std::size_t i = 0; i < edges.size(); ++i) {
        slots.find(hashOfNumbers(edges[i].low, edges[i].high), [](std::int32_t) { return false; }) =
            static_cast<std::int32_t>(i);
    }
}

void EdgeCuts::add(std::int32_t a, std::int32_t b, double part, std::int32_t point) {
    std::int32_t edge = find(a, b);
    if (edge == none) {
        const auto [low, high] = std::minmax(a, b);
        edge = static_cast<std::int32_t>(edges.size());
        edges.push_back({low, high});
        if (edges.size() == 1 || slots.isFullWith(edges.size())) {
            makeSlots();
        } else {
            slots.find(hashOfNumbers(low, high), [](std::int32_t) { return false; }) = edge;
        }
    }
    cuts.push_back({edge, point, part});
}

void EdgeCuts::sort() {
    std::sort(cuts.begin(), cuts.end(), [](const Cut& a, const Cut& b) {
        return std::pair(a.edge, a.part) < std::pair(b.edge, b.part);
    });
    for (std::size_t i = 0; i < cuts.size(); ++i) {
        CutEdge& edge = edges[static_cast<std::size_t>(cuts[i].edge)];
        if (edge.n++ == 0) edge.first = static_cast<std::int32_t>(i);
    }
}

bool EdgeCuts::touch(const Mesh& mesh, const Face& face) const {
    for (const auto& [from, to] : sides(face)) {
        if (isCut(pointOf(mesh, from), pointOf(mesh, to))) return true;
    }
    return false;
}

/// The record between these two for a cut whose records form the chain from `first`.
std::int32_t EdgeCuts::between(std::int32_t& first, std::int32_t low, std::int32_t high,
                               double part, MakeBetween make) {
    if (low < 0 || high < 0) return none;
    for (std::int32_t i = first; i != none; i = made[static_cast<std::size_t>(i)].next) {
        const Made& record = made[static_cast<std::size_t>(i)];
        if (record.low == low && record.high == high) return record.number;
    }
    const std::int32_t number = low == high ? low : (draft.*make)(low, high, part);
    made.push_back({low, high, number, first});
    first = static_cast<std::int32_t>(made.size()) - 1;
    return number;
}

void EdgeCuts::expand(const Mesh& mesh, const Face& face, std::vector<DraftCorner>& corners) {
    corners.clear();
    for (const auto& [from, to] : sides(face)) {
        corners.push_back(draftCorner(mesh, from));
        const std::int32_t number = find(pointOf(mesh, from), pointOf(mesh, to));
        if (number == none) continue;
        const CutEdge& edge = edges[static_cast<std::size_t>(number)];
        DraftCorner low = corners.back(), high = draftCorner(mesh, to);
        const bool upwards = low.p == edge.low;
        if (!upwards) std::swap(low, high);
        for (std::int32_t k = 0; k < edge.n; ++k) {
            Cut& cut = cuts[static_cast<std::size_t>(edge.first + (upwards ? k : edge.n - 1 - k))];
            corners.push_back(
                {cut.point,
                 between(cut.texcoords, low.t, high.t, cut.part, &MeshDraft::addTexCoordBetween),
                 between(cut.normals, low.d, high.d, cut.part, &MeshDraft::addNormalBetween),
                 from.edgeuse});
        }
    }
}

} // namespace polyfab
