// SPDX-License-Identifier: GPL-3.0-or-later
// The elements of a mesh in the lines of an OBJ file.
#pragma once

#include "formats/obj/obj_reading.h"

#include <cstdint>

namespace polyfab {

struct FaceCorner;
struct Mesh;

/// The numbers of a face corner: of its point, texture coordinate and normal; 0 is none.
struct CornerNumbers {
    std::int64_t point = 0;
    std::int64_t texcoord = 0;
    std::int64_t normal = 0;
};

/// Elements that were there before the section of the file that numbers count from.
using Bases = CornerNumbers;

[[nodiscard]] Bases currentCounts(const Mesh& mesh);

/// What stands in lines that are read, behind what is.
struct Surplus {
    std::int64_t colors = 0, weights = 0, depths = 0;

    /// Of a point: a weight, or a colour with or without one.
    void behindPoint(int words, double first) {
        if (words >= 3) {
            ++colors;
        } else if (words > 0 && first != 1) {
            ++weights;
        }
    }
    /// Of a texture coordinate. Many files give all of them the third one, as 0.
    void behindTexCoord(int words, double first) {
        if (words > 0 && first != 0) ++depths;
    }
};

/// A file on its way into the mesh.
struct ObjInput {
    Mesh& mesh;
    ObjReading how;
    Bases bases = currentCounts(mesh);
    Surplus surplus = {};
};

/// Numbers of a corner that name nothing.
struct VainNumbers {
    std::int64_t texcoords = 0, normals = 0;
};

/// Sets the references of a corner and counts those in vain. Null, or the reason why there is no
/// such corner, which is then unchanged.
[[nodiscard]] const char* setCorner(const ObjInput& input, FaceCorner& corner,
                                    const CornerNumbers& numbers, VainNumbers& vain);

/// Whether this is not to be a texture coordinate.
[[nodiscard]] bool isBeyondTexture(double value);

/// Reads a line of `v`, `vt`, `vn` or `f` with nothing odd about it, which has a line end ahead.
/// Where it ends; null when it declines, and the mesh is then as it was.
[[nodiscard]] const char* plainLine(ObjInput& input, const char* line);

} // namespace polyfab
