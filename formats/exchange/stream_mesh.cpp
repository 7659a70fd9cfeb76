// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/exchange/stream_mesh.h"

#include "display/material_looks.h"
#include "formats/exchange/import_stream.h"
#include "formats/exchange/stream_materials.h"
#include "mesh/mesh.h"
#include "mesh/names.h"
#include "workbench/long_work.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>
#include <vector>

namespace polyfab {
namespace {

double finite(double value) { return std::isfinite(value) ? value : 0; }

/// Why the mesh cannot take these tables up; "" when it can.
std::string refusal(const Mesh& mesh, const StreamView& view, bool append) {
    const auto tooMany = [append](std::int64_t present, std::size_t added, std::int64_t limit) {
        return static_cast<std::int64_t>(added) > limit - (append ? present : 0);
    };
    constexpr std::int64_t maxCount = std::numeric_limits<std::int32_t>::max();
    if (tooMany(mesh.ng, view.groups.size(), maxIndexed)) return "it has too many groups";
    if (tooMany(mesh.nmat, view.materials.size(), maxIndexed)) return "it has too many materials";
    if (tooMany(mesh.np, view.points.size(), maxCount)
        || tooMany(mesh.nq, view.corners.size(), maxCount)
        || tooMany(mesh.nf, view.faces.size(), maxCount)) {
        return "the mesh would be too large";
    }
    const bool wide = std::any_of(view.faces.begin(), view.faces.end(),
                                  [](const StreamFace& face) { return face.corners > maxIndexed; });
    return wide ? "a face has more than 32767 corners" : "";
}

/// Room for all, so that adding neither fails nor moves an array.
bool reserve(Mesh& mesh, const StreamView& view) {
    const auto sum = [](std::int64_t present, std::size_t added) {
        return present + static_cast<std::int64_t>(added);
    };
    return mesh.growPoints(sum(mesh.np, view.points.size()), true)
           && mesh.growNormals(sum(mesh.nd, view.normals.size()), true)
           && mesh.growTexCoords(sum(mesh.nt, view.texcoords.size()), true)
           && mesh.growCorners(sum(mesh.nq, view.corners.size()), true)
           && mesh.growFaces(sum(mesh.nf, view.faces.size()), true);
}

std::vector<std::int16_t> addGroups(Mesh& mesh, const StreamView& view) {
    NameTable table(mesh, NameTable::Kind::groups);
    std::vector<std::int16_t> indices;
    for (const std::string_view name : view.groups) {
        indices.push_back(static_cast<std::int16_t>(table.findOrAdd(cleanName(name))));
    }
    return indices;
}

/// Adds the tables to the mesh. False, and the mesh empty, when there is no room.
bool addTables(Mesh& mesh, const StreamView& view, const std::vector<MaterialLook>& looks) {
    const auto [np, nt, nd] = std::tuple(mesh.np, mesh.nt, mesh.nd);
    if (!reserve(mesh, view)) {
        mesh.clear(true);
        return false;
    }
    for (const Vec3& p : view.points) mesh.addPoint(finite(p.x), finite(p.y), finite(p.z), false);
    for (const Vec3& d : view.normals) mesh.addNormal(finite(d.x), finite(d.y), finite(d.z));
    for (const StreamTexCoord& t : view.texcoords) mesh.addTexCoord(finite(t.u), finite(t.v));
    const std::vector<std::int16_t> groups = addGroups(mesh, view);
    const std::vector<std::int16_t> materials = addMaterials(mesh, view, looks);
    const StreamCorner* next = view.corners.data();
    LoopProgress progress(std::ssize(view.faces));
    for (const StreamFace& face : view.faces) {
        progress.step();
        mesh.curgroup = groups[static_cast<std::size_t>(face.group)];
        mesh.curmat = materials[static_cast<std::size_t>(face.material)];
        FaceCorner* corner = mesh.newFace(face.corners)->q;
        for (int k = 0; k < face.corners; ++k, ++corner, ++next) {
            corner->p = mesh.points + np + next->point;
            if (next->texcoord >= 0) corner->t = mesh.texcoords + nt + next->texcoord;
            if (next->normal >= 0) corner->d = mesh.normals + nd + next->normal;
            corner->edgeuse = 2;
        }
    }
    return true;
}

} // namespace

std::string withoutControls(std::string_view text) {
    std::string clean(text);
    std::replace_if(
        clean.begin(), clean.end(),
        [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }, ' ');
    return clean;
}

std::string cleanName(std::string_view name) {
    const std::string clean = withoutControls(storedName(name));
    return clean.empty() ? "default" : clean;
}

std::string takeStream(Mesh& mesh, const StreamView& view, const std::vector<MaterialLook>& looks,
                       bool append) {
    std::string reason = refusal(mesh, view, append);
    if (!reason.empty()) return reason;
    if (!append) mesh.clear(true);
    return addTables(mesh, view, looks) ? "" : "there is not enough memory";
}

} // namespace polyfab
