// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/surface_looks.h"

#include "display/options.h"
#include "mesh/faces.h"
#include "picture/workers.h"

#include <algorithm>

namespace polyfab {
namespace {

constexpr std::size_t pieceSize = 1 << 14;

bool hasTexCoord(const Face& face) { return face.n >= 3 && face.q->t != nullptr; }

/// The place of an index in a list that begins with what is not there.
std::size_t placeOf(int index, int count) {
    return index >= 0 && index < count ? static_cast<std::size_t>(index) + 1 : 0;
}

} // namespace

ShownPicture SurfaceLooks::shown(const FacePicture& picture) {
    if (picture.image == nullptr || picture.image->pixels.empty()) return {};
    const auto [entry, isNew] = textures.try_emplace(picture.image, *picture.image);
    holes |= entry->second.hasHoles();
    return {&entry->second, picture.placing};
}

void SurfaceLooks::findPictures(const Mesh& mesh) {
    if (version != pictureVersion() || !displayOptions.renderTextures) textures.clear();
    version = pictureVersion();
    holes = false;
    ofSlots = {};
    ofMaterials.assign(static_cast<std::size_t>(mesh.nmat) + 1, {});
    if (!displayOptions.renderTextures) return;
    FacePictures pictures(mesh);
    std::vector<char> asked(ofMaterials.size()), askedGroup(static_cast<std::size_t>(mesh.ng) + 1);
    for (const Face& face : liveFaces(mesh)) {
        const std::size_t material = placeOf(face.mat, mesh.nmat), group = placeOf(face.g, mesh.ng);
        if ((asked[material] != 0 && askedGroup[group] != 0) || !hasTexCoord(face)) continue;
        Face one = face; // of the one kind of picture only
        one.g = -1;
        if (material > 0 && asked[material]++ == 0) ofMaterials[material] = shown(pictures.of(one));
        one = face;
        one.mat = -1;
        if (group > 0 && askedGroup[group]++ == 0) {
            ofSlots[mesh.groups[face.g].texture % slots] = shown(pictures.of(one));
        }
        asked[material] = askedGroup[group] = 1;
    }
}

void SurfaceLooks::findColors(const Mesh& mesh) {
    colors.clear();
    for (int i = -1; i < mesh.nmat; ++i) {
        const Color plain = colorOf(i < 0 ? defaultColor : mesh.materials[i].color);
        for (const bool selected : {true, false}) {
            for (const bool behind : {false, true}) {
                colors.push_back(tinted(plain, selected, behind));
            }
        }
    }
}

void SurfaceLooks::findTriangles(const Mesh& mesh, const TriangleList& list) {
    const std::vector<RasterTriangle>& all = list.triangles;
    ofTriangle.resize(all.size());
    inPieces(all.size(), pieceSize, [&](std::size_t from, std::size_t to) {
        for (std::size_t t = from; t < to; ++t) {
            __builtin_prefetch(&mesh.faces[all[std::min(t + 16, to - 1)].face]);
            const Face& face = mesh.faces[all[t].face];
            const auto color = static_cast<std::uint32_t>(4 * placeOf(face.mat, mesh.nmat));
            const bool inGroup = placeOf(face.g, mesh.ng) > 0;
            const std::uint32_t slot = inGroup ? mesh.groups[face.g].texture % slots : slots;
            ofTriangle[t] = slot << slotShift | color | (face.selected != 0 ? 0 : unselected);
        }
    });
}

} // namespace polyfab
