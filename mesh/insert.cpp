// SPDX-License-Identifier: GPL-3.0-or-later
// Adding elements to the mesh.
#include "mesh/mesh.h"

#include "geometry/projection.h"
#include "mesh/faces.h"
#include "platform/platform.h"

#include <algorithm>

namespace polyfab {
namespace {

template <typename T, typename Same>
int findFirst(const T* array, int count, Same same) {
    const T* const found = std::find_if(array, array + count, same);
    return found == array + count ? -1 : indexIn(array, found);
}

/// Brings a current group or material into range.
void intoRange(std::int16_t& current, int count) {
    if (current < 0 || current >= count) current = 0;
}

} // namespace

int Mesh::addPoint(double x, double y, double z, bool fromScreen) {
    if (!growPoints(std::int64_t{np} + 1, false)) return 0;
    changed = 1;
    const Vec3 given{x, y, z};
    const Vec3 world = fromScreen ? projection.toWorld(given) : given;
    const Vec3 screen = fromScreen ? given : projection.toScreen(given);
    points[np] = {world.x, world.y, world.z, screen.x, screen.y, screen.z, 0, 0, 0, 0};
    return np++;
}

int Mesh::findOrAddPoint(double x, double y, double z) {
    const int found =
        findFirst(points, np, [&](const Point& p) { return p.x == x && p.y == y && p.z == z; });
    return found >= 0 ? found : addPoint(x, y, z, false);
}

int Mesh::addNormal(double x, double y, double z) {
    if (!growNormals(std::int64_t{nd} + 1, false)) return 0;
    normals[nd] = {x, y, z};
    changed = 1;
    return nd++;
}

int Mesh::addTexCoord(double u, double v) {
    if (!growTexCoords(std::int64_t{nt} + 1, false)) return 0;
    texcoords[nt] = {u, v, 0, 1};
    changed = 1;
    return nt++;
}

int Mesh::findOrAddTexCoord(double u, double v) {
    const int found =
        findFirst(texcoords, nt, [&](const TexCoord& t) { return t.u == u && t.v == v; });
    return found >= 0 ? found : addTexCoord(u, v);
}

int Mesh::addTextureMapArea() {
    if (!growTextureMapAreas(std::int64_t{ntma} + 1, false)) return 0;
    tmas[ntma].selected = 1;
    return ntma++;
}

int Mesh::addPart() {
    if (!growParts(std::int64_t{nprt} + 1, false)) return 0;
    parts[nprt].selected = 1;
    return nprt++;
}

Face* Mesh::newFace(int n) {
    if (n < 0 || n > maxIndexed) {
        platform().message("too many corners", "a face can have at most 32767 corners",
                           Icon::exclamation);
        return nullptr;
    }
    changed = 1;
    intoRange(curgroup, ng);
    if (ng == 0) addGroup("default");
    intoRange(curmat, nmat);
    if (nmat == 0) addMaterial(defaultColor, "default");
    if (ntma == 0) addTextureMapArea();
    if (nprt == 0) addPart();
    if (ng == 0 || nmat == 0 || ntma == 0 || nprt == 0) return nullptr; // no memory for one
    if (!growCorners(std::int64_t{nq} + n, false) || !growFaces(std::int64_t{nf} + 1, false)) {
        return nullptr;
    }
    Face* const face = &faces[nf++];
    face->q = corners + nq;
    face->n = static_cast<std::int16_t>(n);
    nq += n;
    initFace(face);
    return face;
}

void Mesh::initFace(Face* face) {
    face->selected = 1;
    face->kind = 2;
    face->mat = std::max<std::int16_t>(curmat, 0);
    face->g = std::max<std::int16_t>(curgroup, 0);
    face->tma = 0;
    face->prt = 0;
    std::fill_n(face->q, face->n, FaceCorner());
    changed = 1;
}

Face* Mesh::addFaceByPoints(Point* const* list, int n, bool dropRepeats) {
    Face* const face = newFace(n);
    if (face == nullptr) return nullptr;
    const bool drop = dropRepeats && list != nullptr;
    while (drop && n >= 2 && list[0] == list[n - 1]) --n;
    FaceCorner* corner = face->q;
    for (int i = 0; i < n; ++i) {
        if (drop && i > 0 && list[i] == list[i - 1]) continue;
        corner->p = list != nullptr ? list[i] : nullptr;
        corner->edgeuse = 2;
        ++corner;
    }
    face->n = static_cast<std::int16_t>(corner - face->q);
    return face;
}

Face* Mesh::addFaceByCorners(const FaceCorner* list, int n) {
    Face* const face = newFace(n);
    if (face != nullptr && list != nullptr) std::copy_n(list, n, face->q);
    return face;
}

void Mesh::markPointsOnSelected() {
    for (int i = 0; i < np; ++i) points[i].onselected = 0;
    for (const Face& face : selectedFaces(*this)) {
        for (const FaceCorner& corner : polyfab::corners(face)) {
            if (corner.p != nullptr) corner.p->onselected = 1;
        }
    }
}

void Mesh::highlightPoint(int index) {
    for (int i = 0; i < np; ++i) points[i].highlighted = 0;
    if (index >= 0 && index < np) points[index].highlighted = 1;
}

} // namespace polyfab
