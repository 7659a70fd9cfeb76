// SPDX-License-Identifier: GPL-3.0-or-later
// Small meshes with everything in them that collection and edges have to cope with.
#pragma once

#include "mesh/mesh.h"
#include "mesh/store.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace polyfab::test {

class RandomMesh {
  public:
    explicit RandomMesh(unsigned seed) : random(seed) {}

    int below(int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); }

    /// Fills OB with faces of 0 to `most` random corners, each corner with a texture coordinate of
    /// its own and some with normals; a few of the faces are deleted.
    void fill(int points, int faces, int most) {
        Group* groups = OB->groups;
        OB->clear(true);
        farfree(&groups);
        for (int i = 0; i < points; ++i) OB->addPoint(below(9), below(9), below(9), false);
        for (int i = 0; i < 4; ++i) {
            OB->addNormal(i, 0, 1);
            OB->addGroup("g" + std::to_string(i));
            OB->addMaterial(0, "m" + std::to_string(i));
        }
        for (int i = 0; i < faces; ++i) addFace(below(most + 1) + 1);
        for (int i = 0; i < faces; ++i) {
            if (below(6) == 0) OB->faces[i].q = nullptr;
        }
        OB->curface = below(faces + 1) - 1;
    }

  private:
    void addFace(int n) {
        OB->curgroup = static_cast<std::int16_t>(below(4));
        OB->curmat = static_cast<std::int16_t>(below(4));
        OB->newFace(n); // one corner more than the face keeps, so that some lie about unused
        Face& face = OB->faces[OB->nf - 1];
        --face.n;
        face.selected = below(2) != 0;
        for (int k = 0; k < n; ++k) {
            const int t = OB->addTexCoord(OB->nt, 0);
            Normal* const normal = below(2) != 0 ? nullptr : OB->normals + below(4);
            face.q[k] = {OB->points + below(OB->np), normal, OB->texcoords + t, 2, 0};
        }
    }

    std::mt19937 random;
};

/// What a face's corners refer to, by value, so that it can be compared across meshes.
struct CornerView {
    double x, y, z, u;
    double normal;
    bool operator==(const CornerView&) const = default;
};

inline std::vector<CornerView> view(const FaceCorner* q, int n) {
    std::vector<CornerView> result;
    for (const FaceCorner* c = q; c < q + n; ++c) {
        const double u = c->t != nullptr ? c->t->u : -1;
        result.push_back({c->p->x, c->p->y, c->p->z, u, c->d != nullptr ? c->d->x : -1});
    }
    return result;
}

} // namespace polyfab::test
