// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/written_parts.h"

#include "mesh/faces.h"
#include "mesh/mesh.h"

#include <algorithm>
#include <new>

namespace polyfab {
namespace {

/// Marks that of the array which is there.
template <typename T>
void mark(std::vector<bool>& marks, const T* array, const T* element) {
    if (element != nullptr) marks[static_cast<std::size_t>(element - array)] = true;
}

void mark(std::vector<bool>& marks, int index) {
    if (index >= 0 && index < static_cast<int>(marks.size())) {
        marks[static_cast<std::size_t>(index)] = true;
    }
}

std::int64_t count(const std::vector<bool>& marks) {
    return std::count(marks.begin(), marks.end(), true);
}

std::vector<bool> none(int size) { return std::vector<bool>(static_cast<std::size_t>(size)); }

} // namespace

bool KnownNames::areOfAnother(const Material& material) {
    return colors.try_emplace(material.name, material.color).first->second != material.color;
}

WrittenParts writtenParts(const Mesh& mesh, bool onlySelected) try {
    WrittenParts written;
    written.points = none(mesh.np);
    written.materials = none(mesh.nmat);
    std::vector<bool> inGroups = none(mesh.ng), places = none(mesh.nt), directions = none(mesh.nd);
    for (const Face& face : liveFaces(mesh)) {
        if (onlySelected && face.selected == 0) continue;
        mark(inGroups, face.g);
        mark(written.materials, face.mat);
        for (const FaceCorner& corner : corners(face)) {
            mark(written.points, mesh.points, corner.p);
            mark(places, mesh.texcoords, corner.t);
            mark(directions, mesh.normals, corner.d);
        }
    }
    written.groups = count(inGroups);
    written.texcoords = count(places);
    written.normals = count(directions);
    if (!onlySelected) written.loosePoints = mesh.np - count(written.points);
    KnownNames names;
    for (int i = 0; i < mesh.nmat; ++i) {
        if (!written.materials[static_cast<std::size_t>(i)]) continue;
        const Material& material = mesh.materials[i];
        written.colored += material.color != defaultColor;
        written.doubleNames += names.areOfAnother(material);
    }
    return written;
} catch (const std::bad_alloc&) {
    return {};
}

} // namespace polyfab
