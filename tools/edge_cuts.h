// SPDX-License-Identifier: GPL-3.0-or-later
// What tools have in common that cut faces up: edges with new points on them, which every face on
// the edge gets as further corners, and a draft of all changes, which enters the mesh at one go.
#pragma once

#include "geometry/vec3.h"
#include "mesh/hash_slots.h"
#include "mesh/mesh.h"

#include <cstdint>
#include <span>
#include <vector>

namespace polyfab {

/// A corner by the numbers of what it refers to; -1: nothing.
struct DraftCorner {
    std::int32_t p, t, d;
    std::uint8_t edgeuse; ///< of the edge to the next corner
};

[[nodiscard]] DraftCorner draftCorner(const Mesh& mesh, const FaceCorner& corner);

/// New elements and faces, and faces that are taken apart. The mesh stays as it is until install,
/// and must stay so. Everything may throw std::bad_alloc.
class MeshDraft {
  public:
    explicit MeshDraft(const Mesh& owner) : mesh(owner) {}

    // Each gives the number that the element will have.
    std::int32_t addPoint(const Vec3& at);
    std::int32_t addTexCoord(const TexCoord& added);
    std::int32_t addNormal(const Normal& added);
    /// At this part of the way from one to the other, which may be new ones themselves.
    std::int32_t addTexCoordBetween(std::int32_t from, std::int32_t to, double part);
    std::int32_t addNormalBetween(std::int32_t from, std::int32_t to, double part);

    [[nodiscard]] Vec3 place(std::int32_t point) const;
    [[nodiscard]] TexCoord texCoord(std::int32_t number) const;
    [[nodiscard]] Normal normal(std::int32_t number) const;
    [[nodiscard]] std::int32_t newPoints() const {
        return static_cast<std::int32_t>(points.size());
    }

    /// A piece of this face, with its attributes. The first one takes its place, those that follow
    /// go to the end of the mesh. The pieces of a face are added one behind the other.
    void addPiece(std::int32_t face, std::span<const DraftCorner> corners);
    /// A face at the end with the attributes of this record.
    void addFace(const Face& attributes, std::span<const DraftCorner> corners);

    /// Makes it all true. A current face stays current unless it is taken apart; a current edge of
    /// a face that is replaced is none any more. False after a message box: a face has more corners
    /// than faces may have and nothing is done, or without room the mesh is what a failed growth
    /// leaves.
    [[nodiscard]] bool install(Mesh& target) const;

  private:
    struct Piece {
        std::int32_t face; ///< that it is a piece of; -1: of none
        std::int32_t n;
        bool further; ///< goes to the end
        Face attributes;
    };
    [[nodiscard]] bool makeRoom(Mesh& target) const;
    void enterElements(Mesh& target) const;

    const Mesh& mesh;
    std::vector<Vec3> points;
    std::vector<TexCoord> texcoords;
    std::vector<Normal> normals;
    std::vector<Piece> pieces;
    std::vector<DraftCorner> pieceCorners; ///< of all pieces, one behind the other
    std::int32_t lastFace = -1;            ///< the last one that a piece was added of
    std::int64_t newFaces = 0;
    bool tooLarge = false;
};

/// New points on edges between points of the mesh. The corners that faces get there have texture
/// coordinates and normals in between those of the edge's ends, where both have some; where two
/// faces share both, they share the new ones. May throw std::bad_alloc.
class EdgeCuts {
  public:
    explicit EdgeCuts(MeshDraft& owner) : draft(owner) {}

    /// Whether anything lies on the edge yet.
    [[nodiscard]] bool isCut(std::int32_t a, std::int32_t b) const;
    /// Puts this point of the draft on the edge, at this part of the way from its lower-numbered
    /// end to the other one.
    void add(std::int32_t a, std::int32_t b, double part, std::int32_t point);
    /// To be called between the last add and the first expand.
    void sort();
    /// Whether the face has an edge that is cut.
    [[nodiscard]] bool touch(const Mesh& mesh, const Face& face) const;
    /// The corners of the face, and between them those on its edges.
    void expand(const Mesh& mesh, const Face& face, std::vector<DraftCorner>& corners);

  private:
    static constexpr std::int32_t none = -1;
    struct CutEdge {
        std::int32_t low, high;
        std::int32_t first = 0, n = 0; ///< its cuts, once they are sorted
    };
    struct Cut {
        std::int32_t edge;
        std::int32_t point;
        double part;
        std::int32_t texcoords = none, normals = none; ///< first of the records made for it
    };
    /// A texture coordinate or normal that was made between two others.
    struct Made {
        std::int32_t low, high, number, next;
    };
    [[nodiscard]] std::int32_t find(std::int32_t a, std::int32_t b) const;
    void makeSlots();
    using MakeBetween = std::int32_t (MeshDraft::*)(std::int32_t, std::int32_t, double);
    std::int32_t between(std::int32_t& first, std::int32_t low, std::int32_t high, double part,
                         MakeBetween make);

    MeshDraft& draft;
    mutable HashSlots slots; ///< edges
    std::vector<CutEdge> edges;
    std::vector<Cut> cuts;
    std::vector<Made> made;
};

} // namespace polyfab
