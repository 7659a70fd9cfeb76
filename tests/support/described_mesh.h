// SPDX-License-Identifier: GPL-3.0-or-later
// A mesh told in numbers, without pointers, so that it can be kept and compared: face by face,
// which a tool may do by hand too, or as all its bits.
#pragma once

#include "mesh/faces.h"

#include <array>
#include <string>
#include <vector>

namespace polyfab::test {

/// What a corner refers to; -1: nothing.
struct PlainCorner {
    int p, t, d;
    bool operator==(const PlainCorner&) const = default;
};

/// A slot for a face; of a deleted one only the selection is told.
struct PlainFace {
    bool live = false, selected = false;
    int g = 0, mat = 0, tma = 0, prt = 0;
    int start = 0; ///< place of the first corner in the mesh
    std::vector<PlainCorner> corners;
    bool operator==(const PlainFace&) const = default;
};

template <typename T>
int numberIn(const T* array, const T* element) {
    return element != nullptr ? indexIn(array, element) : -1;
}

inline PlainFace plainFace(const Mesh& m, const Face& face) {
    PlainFace plain;
    plain.selected = face.selected != 0;
    if (face.q == nullptr) return plain;
    plain = {true, plain.selected, face.g, face.mat, face.tma, face.prt, indexIn(m.corners, face.q),
             {}};
    for (const FaceCorner* c = face.q; c != face.q + face.n; ++c) {
        plain.corners.push_back(
            {numberIn(m.points, c->p), numberIn(m.texcoords, c->t), numberIn(m.normals, c->d)});
    }
    return plain;
}

/// All slots.
inline std::vector<PlainFace> plainFaces(const Mesh& m) {
    std::vector<PlainFace> faces;
    for (int i = 0; i < m.nf; ++i) faces.push_back(plainFace(m, m.faces[i]));
    return faces;
}

/// The points of a face; none of a deleted one.
inline std::vector<int> pointsOf(int index) {
    std::vector<int> points;
    for (const PlainCorner& c : plainFace(*OB, OB->faces[index]).corners) points.push_back(c.p);
    return points;
}

inline std::vector<Vec3> allPositions() {
    std::vector<Vec3> list;
    for (int i = 0; i < OB->np; ++i) list.push_back(worldPosition(OB->points[i]));
    return list;
}

/// A face by the names of group and material, its other numbers and what each corner refers to
/// (position, u, x of the normal), so that it can be compared across meshes.
struct Description {
    std::string group, material;
    int tma, prt, selected;
    std::vector<std::array<double, 5>> corners;

    bool operator==(const Description&) const = default;
};

/// The live ones of these faces, with names, texture coordinates and normals of OB.
inline std::vector<Description> describe(const std::vector<PlainFace>& faces,
                                         const std::vector<Vec3>& positions) {
    std::vector<Description> list;
    for (const PlainFace& face : faces) {
        if (!face.live) continue;
        list.push_back({OB->groups[face.g].name,
                        OB->materials[face.mat].name,
                        face.tma,
                        face.prt,
                        face.selected,
                        {}});
        for (const auto& [p, t, d] : face.corners) {
            const Vec3& at = positions[static_cast<std::size_t>(p)];
            list.back().corners.push_back(
                {at.x, at.y, at.z, t < 0 ? -1 : OB->texcoords[t].u, d < 0 ? -1 : OB->normals[d].x});
        }
    }
    return list;
}

inline std::vector<Description> describe() { return describe(plainFaces(*OB), allPositions()); }

template <typename... Values>
void addBits(std::string& text, const Values&... values) {
    (text.append(reinterpret_cast<const char*>(&values), sizeof values), ...);
}

/// All of a mesh but its mark and the positions on the screen, to the last bit.
struct MeshBits {
    std::string saved;   ///< what files hold
    std::string content; ///< all that the user would miss
    std::string scratch; ///< marks of the tools, uses of edges, room to grow
    bool operator==(const MeshBits&) const = default;
};

inline MeshBits bitsOf(const Mesh& m) {
    MeshBits bits;
    const auto addAll = [&bits](const auto* array, int count) {
        for (int i = 0; i < count; ++i) addBits(bits.content, array[i]);
    };
    addBits(bits.content, m.np, m.nq, m.nf, m.nd, m.nt, m.ng, m.nmat, m.ntma, m.nprt, m.curvertex,
            m.curtexcoord, m.curface, m.curgroup, m.curmat, m.curtma, m.curprt, m.mtllib);
    addBits(bits.scratch, m.npmax, m.nqmax, m.nfmax, m.ngmax, m.ntmamax, m.nmatmax, m.nprtmax,
            m.ndmax, m.ntmax);
    for (const Point* p = m.points; p != m.points + m.np; ++p) {
        addBits(bits.saved, p->x, p->y, p->z);
        addBits(bits.scratch, p->mark, p->highlighted, p->mark3, p->onselected);
    }
    for (const TexCoord* t = m.texcoords; t != m.texcoords + m.nt; ++t) {
        addBits(bits.content, t->u, t->v);
        addBits(bits.scratch, t->spare, t->onselected);
    }
    for (const FaceCorner* q = m.corners; q != m.corners + m.nq; ++q) {
        addBits(bits.saved, numberIn(m.points, q->p), numberIn(m.normals, q->d),
                numberIn(m.texcoords, q->t));
        addBits(bits.scratch, q->edgeuse, q->mark);
    }
    for (const Face* f = m.faces; f != m.faces + m.nf; ++f) {
        addBits(bits.saved, numberIn(m.corners, f->q), f->n, f->mat, f->g);
        addBits(bits.content, f->tma, f->prt, f->kind, f->selected);
    }
    for (int i = 0; i < m.ng; ++i) { // behind a name's end there may be anything
        bits.saved += m.groups[i].name + std::string(1, '\0');
        addBits(bits.content, m.groups[i].selected, m.groups[i].texture);
    }
    for (int i = 0; i < m.nmat; ++i) {
        bits.saved += m.materials[i].name + std::string(1, '\0');
        addBits(bits.content, m.materials[i].color, m.materials[i].selected);
    }
    addAll(m.normals, m.nd);
    addAll(m.tmas, m.ntma);
    addAll(m.parts, m.nprt);
    bits.content += bits.saved;
    return bits;
}

} // namespace polyfab::test
