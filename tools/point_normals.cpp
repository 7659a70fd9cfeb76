// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/point_normals.h"

#include "mesh/faces.h"

#include <utility>

namespace polyfab {
namespace {

bool isSelectedWithCorners(const Face& face) { return isLiveSelected(face) && face.n > 0; }

using SelectedWithCorners = FacesThat<const Face, isSelectedWithCorners>;

std::int64_t lengthOfList(const Mesh& mesh) {
    std::int64_t length = 0;
    for (const Face& face : SelectedWithCorners(mesh)) length += face.n + 1;
    return length;
}

} // namespace

void markUsers(Mesh& mesh) {
    for (Point* p = mesh.points; p != mesh.points + mesh.np; ++p) p->mark = 0;
    for (const Face& face : liveFaces(mesh)) {
        const std::uint8_t user = face.selected ? ofSelected : ofUnselected;
        for (const FaceCorner& corner : corners(face)) corner.p->mark |= user;
    }
}

SelectedSurface::SelectedSurface(const Mesh& mesh)
    : position(mesh.np), normal(mesh.np), hasCornerNormal(mesh.np), points(mesh.np),
      length(lengthOfList(mesh)), faces(length), collected(mesh.np, Vec3{}) {
    if (!*this) return;
    for (std::int32_t i = 0; i < points; ++i) position[i] = worldPosition(mesh.points[i]);
    std::int64_t end = 0;
    for (const Face& face : SelectedWithCorners(mesh)) {
        faces[end++] = face.n;
        for (const FaceCorner& corner : corners(face)) faces[end++] = pointOf(mesh, corner);
    }
}

void SelectedSurface::findNormals() {
    for (std::int32_t i = 0; i < points; ++i) {
        normal[i] = {};
        hasCornerNormal[i] = 0;
    }
    eachFace([&](const std::int32_t* corners, std::int32_t n) {
        std::int32_t before = corners[n - 1];
        for (std::int32_t k = 0; k < n; ++k) {
            const std::int32_t at = corners[k];
            const std::int32_t after = corners[k + 1 == n ? 0 : k + 1];
            const Vec3 ofCorner =
                unitCross(position[after] - position[at], position[before] - position[at]);
            before = at;
            if (isZero(ofCorner)) continue;
            normal[at] += ofCorner;
            hasCornerNormal[at] = 1;
        }
    });
}

void SelectedSurface::smoothNormals() {
    eachSide([&](std::int32_t before, std::int32_t at) {
        collected[before] += normal[at];
        collected[at] += normal[before];
    });
    for (std::int32_t i = 0; i < points; ++i) normal[i] = unit(std::exchange(collected[i], {}));
}

} // namespace polyfab
