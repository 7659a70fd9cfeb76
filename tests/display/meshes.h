// SPDX-License-Identifier: GPL-3.0-or-later
// Small meshes for the display tests.
#pragma once

#include "mesh/mesh.h"
#include "mesh/store.h"

#include <array>
#include <random>
#include <vector>

namespace polyfab::test {

/// A mesh that gives back its groups too, which the record itself leaves in the store.
struct OwnMesh : Mesh {
    ~OwnMesh() { farfree(&groups); }
};

inline Face* addFace(Mesh& mesh, const std::vector<int>& corners) {
    std::vector<Point*> list;
    for (const int corner : corners) list.push_back(mesh.points + corner);
    return mesh.addFaceByPoints(list.data(), static_cast<int>(list.size()), false);
}

inline void addPoints(Mesh& mesh, const std::vector<std::array<double, 3>>& positions) {
    for (const auto& [x, y, z] : positions) mesh.addPoint(x, y, z, false);
}

/// Faces of 1 to 5 corners on few points, so that edges are shared in all ways; every fifth face is
/// deleted, every third unselected.
inline void fillRandom(Mesh& mesh, std::mt19937& random, int points, int faces) {
    std::uniform_real_distribution<double> position(-3, 5);
    for (int i = 0; i < points; ++i) {
        addPoints(mesh, {{position(random), position(random), position(random)}});
    }
    std::uniform_int_distribution<int> point(0, points - 1);
    for (int i = 0; i < faces; ++i) {
        std::vector<int> corners(1 + random() % 5);
        for (int& corner : corners) corner = point(random);
        Face* const face = addFace(mesh, corners);
        if (random() % 5 == 0) face->q = nullptr;
        face->selected = random() % 3 != 0;
    }
}

} // namespace polyfab::test
