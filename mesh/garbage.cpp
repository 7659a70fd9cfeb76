// SPDX-License-Identifier: GPL-3.0-or-later
// Collection: per array one pass that marks what is used, one that moves the survivors down and
// notes their new places, and one that re-points whoever refers to them.
#include "mesh/garbage.h"

#include "mesh/check.h"
#include "mesh/faces.h"
#include "mesh/progress.h"
#include "mesh/table.h"
#include "platform/platform.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace polyfab {
namespace {

constexpr std::int32_t unused = -1;

using Places = Table<std::int32_t>;

bool faulty(const Mesh& mesh, const char* title) {
    const char* const fault = check(mesh);
    if (fault != nullptr) platform().message(title, fault, Icon::exclamation);
    return fault != nullptr;
}

/// Whoever lists the window's titles sees that a collection ran.
void announce() {
    const std::string before = platform().title();
    platform().setTitle("collecting garbage");
    platform().setTitle(before);
}

void compactFaces(Mesh& mesh) {
    std::int32_t kept = 0;
    std::int32_t curface = -1;
    for (const Face& face : liveFaces(mesh)) {
        if (mesh.curface == indexIn(mesh.faces, &face)) curface = kept;
        mesh.faces[kept++] = face;
    }
    mesh.nf = kept;
    mesh.curface = curface;
}

std::int64_t liveCorners(const Mesh& mesh) {
    std::int64_t total = 0;
    for (const Face& face : liveFaces(mesh)) total += face.n;
    return total;
}

/// Moves the corners of all faces, none of them deleted, into `corners`, face by face.
void moveCorners(Mesh& mesh, FaceCorner* corners) {
    WorkCounter done;
    FaceCorner* end = corners;
    for (Face& face : allFaces(mesh)) {
        FaceCorner* const start = end;
        end = std::copy_n(face.q, face.n, start);
        face.q = start;
        done.step(face.n);
    }
    farfree(&mesh.corners);
    mesh.corners = corners;
    mesh.nq = mesh.nqmax = indexIn(corners, end);
}

/// Moves the used elements down, enters their new indices, and gives their number.
template <typename T, typename List>
std::int32_t compact(T* array, std::int32_t count, List& places) {
    std::int32_t kept = 0;
    for (std::int32_t i = 0; i < count; ++i) {
        if (places[i] == unused) continue;
        if (kept != i) array[kept] = array[i];
        places[i] = kept++;
    }
    return kept;
}

/// Drops what no corner refers to. All corners are those of live faces.
void compactReferred(Mesh& mesh, Places& points, Places& texcoords, Places& normals) {
    FaceCorner* const end = mesh.corners + mesh.nq;
    WorkCounter done;
    for (FaceCorner* corner = mesh.corners; corner != end; ++corner) {
        done.step();
        points[indexIn(mesh.points, corner->p)] = 0;
        if (corner->t != nullptr) texcoords[indexIn(mesh.texcoords, corner->t)] = 0;
        if (corner->d != nullptr) normals[indexIn(mesh.normals, corner->d)] = 0;
    }
    // Until all corners follow, the mesh looks sound and is none: nobody may see it meanwhile,
    // which is why these loops do not say that work goes on.
    mesh.np = compact(mesh.points, mesh.np, points);
    mesh.nt = compact(mesh.texcoords, mesh.nt, texcoords);
    mesh.nd = compact(mesh.normals, mesh.nd, normals);
    for (FaceCorner* corner = mesh.corners; corner != end; ++corner) {
        const auto follow = [](auto*& element, auto* array, const Places& places) {
            if (element != nullptr) element = array + places[indexIn(array, element)];
        };
        follow(corner->p, mesh.points, points);
        follow(corner->t, mesh.texcoords, texcoords);
        follow(corner->d, mesh.normals, normals);
    }
    // A failure shows itself, and the mesh is then what a failed growth leaves.
    static_cast<void>(mesh.growPoints(mesh.np, true) && mesh.growTexCoords(mesh.nt, true)
                      && mesh.growNormals(mesh.nd, true));
}

/// Drops the groups (or materials) that no face names in `field`; gives the number kept.
template <typename Named>
std::int32_t compactNamed(Mesh& mesh, Named* array, std::int32_t count, std::int16_t Face::*field) {
    std::vector<std::int32_t> list(static_cast<std::size_t>(count), unused);
    std::int32_t* const places = list.data();
    for (const Face& face : allFaces(mesh)) places[face.*field] = 0;
    const std::int32_t kept = compact(array, count, places);
    for (Face& face : allFaces(mesh)) {
        face.*field = static_cast<std::int16_t>(places[face.*field]);
    }
    return kept;
}

void compactNames(Mesh& mesh) {
    mesh.ng = compactNamed(mesh, mesh.groups, mesh.ng, &Face::g);
    if (mesh.ng == 0) mesh.addGroup("default");
    mesh.curgroup = static_cast<std::int16_t>(std::min<int>(mesh.curgroup, mesh.ng - 1));
    mesh.nmat = compactNamed(mesh, mesh.materials, mesh.nmat, &Face::mat);
    if (mesh.nmat == 0) mesh.addMaterial(0xffffff, "default");
    mesh.curmat = static_cast<std::int16_t>(std::min<int>(mesh.curmat, mesh.nmat - 1));
}

/// What a file of the mesh would tell of it.
auto sizes(const Mesh& mesh) { return std::array{mesh.np, mesh.nt, mesh.nd, mesh.ng, mesh.nmat}; }

} // namespace

bool collectGarbage(Mesh& mesh) {
    announce();
    mesh.curtexcoord = mesh.curvertex = -1;
    if (faulty(mesh, "fault in mesh")) return false;
    // Splits append faces, which get their turn too. A growth that failed leaves an array null.
    WorkCounter done;
    for (int i = 0; i < mesh.nf && mesh.faces != nullptr && mesh.corners != nullptr; ++i) {
        done.step(mesh.faces[i].n);
        tidyFace(mesh, i, true);
    }
    if (faulty(mesh, "fault in mesh after face tidying")) return false;

    // All memory first: what follows cannot stop half-way.
    Places points(mesh.np, unused);
    Places texcoords(mesh.nt, unused);
    Places normals(mesh.nd, unused);
    const auto bytes = static_cast<std::size_t>(liveCorners(mesh)) * sizeof(FaceCorner);
    auto* corners = static_cast<FaceCorner*>(farmalloc(bytes));
    if (!points || !texcoords || !normals || corners == nullptr) {
        farfree(&corners);
        return false;
    }
    const auto before = sizes(mesh);
    compactFaces(mesh);
    moveCorners(mesh, corners);
    compactReferred(mesh, points, texcoords, normals);
    compactNames(mesh);
    if (sizes(mesh) != before) mesh.changed = 1;
    // Never shrinks, but brings an exact capacity back to whole steps.
    return mesh.growFaces(mesh.nf, false) != 0;
}

} // namespace polyfab
