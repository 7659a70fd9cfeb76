// SPDX-License-Identifier: GPL-3.0-or-later
// The texture coordinates of each face are united in a forest of disjoint sets (Tarjan 1975, with
// path halving); each tree is an area.
#include "tools/find_areas.h"

#include "mesh/faces.h"
#include "mesh/store.h"
#include "mesh/table.h"
#include "tools/collect.h"
#include "tools/too_many.h"
#include "workbench/long_work.h"
#include "workbench/notes.h"
#include "workbench/title.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>

namespace polyfab {
namespace {

constexpr std::int32_t noArea = -1;

/// Of a mesh without deleted faces.
class Areas {
  public:
    explicit Areas(const Mesh& owner)
        : mesh(owner), parent(mesh.nt), numberOf(mesh.nt, noArea),
          progress(2 * std::int64_t{mesh.nf}) {}

    /// False after a message box: there was no memory, and nothing of this may be used.
    explicit operator bool() const { return parent && numberOf; }

    void unite() {
        for (std::int32_t i = 0; i < mesh.nt; ++i) parent[i] = i;
        for (const Face& face : liveFaces(mesh)) {
            progress.step();
            std::int32_t first = rootOf(face);
            for (const FaceCorner& corner : corners(face)) {
                if (corner.t == nullptr) continue;
                const std::int32_t other = root(indexIn(mesh.texcoords, corner.t));
                // Linked to the lower one, so that a path can only lead down.
                const std::int32_t low = std::min(first, other);
                parent[std::max(first, other)] = low;
                first = low;
            }
        }
    }

    /// Gives the number of areas.
    std::int32_t number() {
        std::int32_t found = 1;
        long passes = 0;
        const auto showProgress = [&] {
            progress.tell();
            showTitle("%6d texture map areas found, %ld iterations", found, passes);
        };
        showProgress();
        for (const Face& face : liveFaces(mesh)) {
            progress.step();
            const std::int32_t tree = rootOf(face);
            if (tree < 0 || numberOf[tree] != noArea) continue;
            numberOf[tree] = found++;
            passes = 1; // each area takes one
            showProgress();
        }
        return found;
    }

    std::int32_t areaOf(const Face& face) {
        const std::int32_t tree = rootOf(face);
        return tree < 0 ? 0 : numberOf[tree];
    }

  private:
    std::int32_t root(std::int32_t t) {
        while (parent[t] != t) t = parent[t] = parent[parent[t]];
        return t;
    }

    /// The tree of the face's texture coordinates, or noArea when it has none.
    std::int32_t rootOf(const Face& face) {
        for (const FaceCorner& corner : corners(face)) {
            if (corner.t != nullptr) return root(indexIn(mesh.texcoords, corner.t));
        }
        return noArea;
    }

    const Mesh& mesh;
    Table<std::int32_t> parent;   ///< of each texture coordinate; a root is its own
    Table<std::int32_t> numberOf; ///< of each root: the area
    LoopProgress progress;
};

/// Replaces the area table by one for so many areas, all selected. False: no memory, nothing done.
bool replaceTable(Mesh& mesh, std::int32_t count) {
    auto* const table = static_cast<TextureMapArea*>(
        farmalloc(static_cast<std::size_t>(count) * sizeof(TextureMapArea)));
    if (table == nullptr) return false;
    std::fill_n(table, count, TextureMapArea{1});
    farfree(&mesh.tmas);
    mesh.tmas = table;
    mesh.ntma = mesh.ntmamax = count;
    return true;
}

} // namespace

void findareas(Mesh& mesh) {
    std::int32_t found = 0;
    {
        const SavedTitle title(INT_MAX);
        if (!collectForTool(mesh)) return;
        Areas areas(mesh);
        if (!areas) return;
        areas.unite();
        found = areas.number();
        if (!replaceTable(mesh, std::min(found, maxIndexed))) return;
        for (Face& face : liveFaces(mesh)) {
            face.tma = static_cast<std::int16_t>(std::min(areas.areaOf(face), maxIndexed - 1));
        }
    }
    note("found " + counted(found, "texture map area"));
    tellIfTooMany(found, "texture map areas");
}

} // namespace polyfab
