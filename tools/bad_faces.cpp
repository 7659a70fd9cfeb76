// SPDX-License-Identifier: GPL-3.0-or-later
// Triangles are joined after Hertel and Mehlhorn, "Fast triangulation of the plane with respect to
// simple polygons", 1985: any diagonal goes whose pieces are one convex piece without it. Pieces
// are paired off round by round, so that they grow evenly.
#include "tools/bad_faces.h"

#include "mesh/face_angle.h"
#include "mesh/faces.h"
#include "mesh/stale.h"
#include "tools/asking.h"
#include "tools/edge_cuts.h"
#include "tools/flat_polygon.h"
#include "workbench/long_work.h"
#include "workbench/notes.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace polyfab {
namespace {

bool askAngle(double& degrees) {
    return askWithin("max angle out of plane(deg)?", "5", 0, 180, degrees);
}

void takePlaces(const Face& face, std::vector<Vec3>& places) {
    places.clear();
    for (const FaceCorner& corner : corners(face)) places.push_back(worldPosition(*corner.p));
}

using Piece = std::vector<std::int32_t>; ///< corners of a polygon, in its order

/// The pieces of a polygon, which are joined as long as none gets bad.
class Pieces {
  public:
    Pieces(const std::vector<Vec3>& all, double angle, const std::vector<Piece>& triangles,
           bool backwards)
        : places(all), degrees(angle), pieces(triangles) {
        for (const Piece& piece : pieces) {
            const Vec3& tip = placeOf(piece[0]);
            areas.push_back(cross(placeOf(piece[1]) - tip, placeOf(piece[2]) - tip));
        }
        findDiagonals();
        if (backwards) std::reverse(diagonals.begin(), diagonals.end());
    }

    std::vector<Piece> joined() {
        while (joinPairs()) {
        }
        std::erase_if(pieces, [](const Piece& piece) { return piece.empty(); });
        return std::move(pieces);
    }

  private:
    struct Diagonal {
        std::int32_t from, to;
        std::size_t a, b;          ///< the pieces at it
        std::size_t triedWith = 0; ///< the corners of both when they could not be joined
    };

    [[nodiscard]] const Vec3& placeOf(std::int32_t corner) const {
        return places[static_cast<std::size_t>(corner)];
    }

    void findDiagonals() {
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            for (std::size_t k = 0; k < 3; ++k) {
                const auto [low, high] = std::minmax(pieces[i][k], pieces[i][k == 2 ? 0 : k + 1]);
                diagonals.push_back({low, high, i, i});
            }
        }
        std::sort(diagonals.begin(), diagonals.end(), [](const Diagonal& a, const Diagonal& b) {
            return std::pair(a.from, a.to) < std::pair(b.from, b.to);
        });
        std::size_t found = 0;
        for (std::size_t i = 1; i < diagonals.size(); ++i) {
            const Diagonal &first = diagonals[i - 1], &second = diagonals[i];
            if (first.from != second.from || first.to != second.to) continue;
            diagonals[found++] = {first.from, first.to, first.a, second.a};
        }
        diagonals.resize(found);
        for (std::size_t i = 0; i < pieces.size(); ++i) into.push_back(i);
    }

    std::size_t now(std::size_t piece) {
        while (into[piece] != piece) piece = into[piece] = into[into[piece]];
        return piece;
    }

    /// Each piece is joined with one other at most. False when there is nothing more to join.
    bool joinPairs() {
        std::vector<bool> grown(pieces.size(), false);
        bool any = false;
        std::size_t kept = 0;
        for (std::size_t i = 0; i < diagonals.size(); ++i) {
            Diagonal diagonal = diagonals[i];
            const std::size_t a = now(diagonal.a), b = now(diagonal.b);
            if (!grown[a] && !grown[b] && join(diagonal, a, b)) {
                grown[a] = any = true;
                continue;
            }
            diagonals[kept++] = diagonal;
        }
        diagonals.resize(kept);
        return any;
    }

    bool join(Diagonal& diagonal, std::size_t a, std::size_t b) {
        const std::size_t together = pieces[a].size() + pieces[b].size();
        if (diagonal.triedWith == together) return false;
        diagonal.triedWith = together;
        const Vec3 area = areas[a] + areas[b];
        if (turnsBack(diagonal.from, diagonal.to, pieces[a], pieces[b], area)
            || turnsBack(diagonal.to, diagonal.from, pieces[a], pieces[b], area)) {
            return false;
        }
        Piece whole;
        std::set_union(pieces[a].begin(), pieces[a].end(), pieces[b].begin(), pieces[b].end(),
                       std::back_inserter(whole));
        std::vector<Vec3> polygon;
        for (const std::int32_t k : whole) polygon.push_back(placeOf(k));
        if (isBadPolygon(polygon, degrees)) return false;
        pieces[a] = std::move(whole);
        areas[a] = area;
        pieces[b].clear();
        into[b] = a;
        return true;
    }

    /// Whether two pieces would have a corner that turns against their normal at this end of their
    /// diagonal: a quick look before the thorough one, which goes all around them.
    [[nodiscard]] bool turnsBack(std::int32_t end, std::int32_t other, const Piece& a,
                                 const Piece& b, const Vec3& area) const {
        std::int32_t before = end, after = end;
        for (const Piece* piece : {&a, &b}) {
            const auto at = std::lower_bound(piece->begin(), piece->end(), end);
            const std::int32_t last = at == piece->begin() ? piece->back() : at[-1];
            const std::int32_t next = at + 1 == piece->end() ? piece->front() : at[1];
            last == other ? after = next : before = last;
        }
        const Vec3 corner = triangleNormal(placeOf(before), placeOf(end), placeOf(after));
        return !isZero(corner) && dot(corner, area) < 0;
    }

    const std::vector<Vec3>& places;
    double degrees;
    std::vector<Piece> pieces;
    std::vector<Vec3> areas; ///< twice those of the pieces
    std::vector<Diagonal> diagonals;
    std::vector<std::size_t> into; ///< of each piece: the one it went into, or itself
};

/// The pieces that a bad polygon is to be cut into: of two ways the one with fewer. None when its
/// sides cross.
std::vector<Piece> piecesOf(const std::vector<Vec3>& places, double degrees) {
    std::vector<Piece> triangles;
    for (const auto& triangle : trianglesOf(places)) {
        triangles.emplace_back(triangle.begin(), triangle.end());
    }
    std::vector<Piece> one = Pieces(places, degrees, triangles, false).joined();
    std::vector<Piece> other = Pieces(places, degrees, triangles, true).joined();
    return one.size() <= other.size() ? one : other;
}

/// Of faces that were looked at.
struct Counts {
    std::int64_t split = 0, pieces = 0, crossing = 0, notFinite = 0;
};

void split(const Mesh& mesh, const Face& face, const std::vector<Piece>& pieces, MeshDraft& draft) {
    std::vector<DraftCorner> piece;
    for (const Piece& places : pieces) {
        piece.clear();
        for (std::size_t i = 0; i < places.size(); ++i) {
            piece.push_back(draftCorner(mesh, face.q[places[i]]));
            const std::int32_t next = places[i + 1 == places.size() ? 0 : i + 1];
            const bool isSide = next == (places[i] + 1 == face.n ? 0 : places[i] + 1);
            if (!isSide) piece.back().edgeuse = 2;
        }
        draft.addPiece(indexIn(mesh.faces, &face), piece);
    }
}

/// False when Escape was pressed.
bool splitAll(const Mesh& mesh, double degrees, MeshDraft& draft, Counts& counts) {
    std::vector<Vec3> places;
    LoopProgress progress(mesh.nf);
    for (const Face& face : allFaces(mesh)) {
        progress.step();
        if (!isLiveSelected(face)) continue;
        if (stopRequested()) return false;
        if (!isFinite(face)) ++counts.notFinite;
        if (face.n < 4 || !isFinite(face)) continue;
        takePlaces(face, places);
        if (!isBadPolygon(places, degrees)) continue;
        const std::vector<Piece> pieces = piecesOf(places, degrees);
        if (pieces.empty()) ++counts.crossing;
        if (pieces.size() < 2) continue;
        split(mesh, face, pieces, draft);
        ++counts.split;
        counts.pieces += std::ssize(pieces);
    }
    return true;
}

std::string toldNotFinite(std::int64_t count) {
    return count == 0 ? ""
                      : "; I left out " + counted(count, "face") + " that "
                            + (count == 1 ? "is" : "are") + " not finite";
}

} // namespace

void selectBadFaces(Mesh& mesh) {
    double degrees = 0;
    if (!askAngle(degrees)) return;
    std::vector<Vec3> places;
    std::int64_t found = 0, notFinite = 0;
    LoopProgress progress(mesh.nf);
    for (Face& face : liveFaces(mesh)) {
        progress.step();
        const bool finite = isFinite(face);
        if (finite) takePlaces(face, places);
        face.selected = finite && isBadPolygon(places, degrees) ? 1 : 0;
        found += face.selected;
        notFinite += finite ? 0 : 1;
    }
    stale.edges = true;
    note(counted(found) + " such " + (found == 1 ? "face" : "faces") + " found"
         + toldNotFinite(notFinite));
}

void splitBadFaces(Mesh& mesh) {
    double degrees = 0;
    if (!hasFacesTo(mesh, "split up") || !askAngle(degrees)) return;
    MeshDraft draft(mesh);
    Counts counts;
    if (!splitAll(mesh, degrees, draft, counts) || !draft.install(mesh)) return;
    std::string text =
        counted(counts.split, "face") + " split up into " + counted(counts.pieces, "piece");
    if (counts.crossing > 0) text += "; the sides of " + counted(counts.crossing) + " cross";
    note(text + toldNotFinite(counts.notFinite));
}

} // namespace polyfab
