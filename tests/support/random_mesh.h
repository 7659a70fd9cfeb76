// SPDX-License-Identifier: GPL-3.0-or-later
// Small meshes with everything in them that collection and edges have to cope with.
#pragma once

#include "tests/support/described_mesh.h"
#include "tests/support/small_meshes.h"

#include <functional>
#include <random>
#include <string>
#include <utility>

namespace polyfab::test {

class RandomMesh {
  public:
    explicit RandomMesh(unsigned seed)
        : below([random = std::mt19937(seed)](int n) mutable {
              return static_cast<int>(random() % static_cast<unsigned>(n));
          }) {}
    explicit RandomMesh(std::function<int(int)> numbers) : below(std::move(numbers)) {}

    std::function<int(int)> below; ///< a number from 0 to n - 1

    /// Fills OB with faces of 1 to `most` random corners, each corner with a texture coordinate of
    /// its own and some with normals; a few of the faces are deleted.
    void fill(int points, int faces, int most) {
        emptyMesh();
        for (int i = 0; i < points; ++i) OB->addPoint(below(9), below(9), below(9), false);
        for (int i = 0; i < 4; ++i) {
            OB->addNormal(i, 0, 1);
            OB->addGroup("g" + std::to_string(i));
            OB->addMaterial(0, "m" + std::to_string(i));
        }
        for (int i = 0; i < faces; ++i) {
            OB->curgroup = static_cast<std::int16_t>(below(4));
            OB->curmat = static_cast<std::int16_t>(below(4));
            // One corner more than the face keeps, so that some lie about unused.
            Face& face = *OB->newFace(below(most) + 2);
            --face.n;
            face.selected = below(2) != 0;
            for (int k = 0; k < face.n; ++k) {
                const int t = OB->addTexCoord(OB->nt, 0);
                Normal* const normal = below(2) != 0 ? nullptr : OB->normals + below(4);
                face.q[k] = {OB->points + below(points), normal, OB->texcoords + t, 2, 0};
            }
            if (below(6) == 0) face.q = nullptr;
        }
        OB->curface = below(faces + 1) - 1;
    }
};

} // namespace polyfab::test
