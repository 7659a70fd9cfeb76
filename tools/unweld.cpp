// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/unweld.h"

#include "mesh/faces.h"
#include "mesh/stale.h"
#include "mesh/table.h"
#include "platform/platform.h"
#include "workbench/long_work.h"
#include "workbench/state.h"
#include "workbench/title.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

namespace polyfab {
namespace {

void finish(Mesh& mesh, std::int32_t copies) {
    if (copies > 0) {
        mesh.changed = 1;
        stale.edges = true;
    }
    platform().message(
        "", "I have unwelded " + std::to_string(copies) + (copies == 1 ? " point" : " points"),
        Icon::none);
}

/// Which faces use a point.
constexpr std::uint8_t bySelected = 1, byUnselected = 2, byBoth = 3;

/// The live faces part by part, and how many parts use each point.
struct PartTables {
    Table<std::int32_t> end;      ///< of each part: where its faces end in `faces`
    Table<std::int32_t> faces;    ///< by parts
    Table<std::uint8_t> selected; ///< of each part: 1 when it has a selected face
    Table<std::int32_t> uses;     ///< of each point: parts that have it
    Table<std::int32_t> selectedUses;
    Table<std::int32_t> lastPart; ///< of each point: the last part that was seen to have it
    Table<std::int32_t> copy;     ///< of each point: what `lastPart` has in its place

    explicit PartTables(const Mesh& mesh)
        : end(mesh.nprt, 0), faces(mesh.nf), selected(mesh.nprt, 0), uses(mesh.np, 0),
          selectedUses(mesh.np, 0), lastPart(mesh.np, -1), copy(mesh.np) {}

    bool ready() const {
        return end && faces && selected && uses && selectedUses && lastPart && copy;
    }

    /// Calls use(corner, point) for the corners of the part's faces.
    template <typename Use>
    void eachCorner(const Mesh& mesh, std::int32_t part, Use use) const {
        for (std::int32_t i = part == 0 ? 0 : end[part - 1]; i < end[part]; ++i) {
            for (FaceCorner& corner : corners(mesh.faces[faces[i]])) {
                use(corner, pointOf(mesh, corner));
            }
        }
    }
};

void sortByParts(const Mesh& mesh, PartTables& t) {
    for (const Face& face : liveFaces(mesh)) {
        ++t.end[face.prt];
        if (face.selected) t.selected[face.prt] = 1;
    }
    std::int32_t start = 0;
    for (std::int32_t i = 0; i < mesh.nprt; ++i) {
        t.end[i] = std::exchange(start, start + t.end[i]);
    }
    for (const Face& face : liveFaces(mesh)) {
        t.faces[t.end[face.prt]++] = indexIn(mesh.faces, &face);
    }
}

/// Counts the parts at each point; gives the number of copies that there will be: one for each
/// selected part, less one where the last of them can keep the point.
std::int64_t countUses(const Mesh& mesh, PartTables& t) {
    for (std::int32_t part = 0; part < mesh.nprt; ++part) {
        t.eachCorner(mesh, part, [&](const FaceCorner&, std::int32_t point) {
            if (std::exchange(t.lastPart[point], part) == part) return;
            ++t.uses[point];
            t.selectedUses[point] += t.selected[part];
        });
    }
    std::int64_t copies = 0;
    for (std::int32_t i = 0; i < mesh.np; ++i) {
        copies += std::max(0, std::min(t.selectedUses[i], t.uses[i] - 1));
        t.lastPart[i] = -1;
    }
    return copies;
}

/// Corners of this part are still on points that the tables know of.
void unweldPart(Mesh& mesh, PartTables& t, std::int32_t part) {
    t.eachCorner(mesh, part, [&](FaceCorner& corner, std::int32_t point) {
        if (std::exchange(t.lastPart[point], part) != part) {
            const bool shared = t.uses[point] > 1;
            if (shared) --t.uses[point];
            t.copy[point] = shared ? copyPoint(mesh, point) : point;
        }
        corner.p = mesh.points + t.copy[point];
    });
}

void unweldPartByPart(Mesh& mesh, PartTables& t) {
    const auto total = static_cast<int>(std::count(&t.selected[0], &t.selected[0] + mesh.nprt, 1));
    const SavedTitle title(512);
    int number = 0;
    for (std::int32_t part = 0; part < mesh.nprt; ++part) {
        if (!t.selected[part]) continue;
        tellProgress(number, total);
        if (abortRequested()) break;
        showTitle("I am working on part %4d out of %d", ++number, total);
        unweldPart(mesh, t, part);
    }
}

} // namespace

void unweldSelected(Mesh& mesh) {
    Table<std::uint8_t> users(mesh.np, 0);
    Table<std::int32_t> copies(mesh.np, 0);
    if (!users || !copies) return;
    for (const Face& face : liveFaces(mesh)) {
        const std::uint8_t user = face.selected ? bySelected : byUnselected;
        for (const FaceCorner& corner : corners(face)) users[pointOf(mesh, corner)] |= user;
    }
    const std::int32_t before = mesh.np;
    const auto shared = std::count(&users[0], &users[0] + before, byBoth);
    if (!mesh.growPoints(std::int64_t{before} + shared, false)) return;
    for (std::int32_t i = 0; i < before; ++i) {
        copies[i] = users[i] == byBoth ? copyPoint(mesh, i) : i;
    }
    for (const Face& face : selectedFaces(mesh)) {
        for (FaceCorner& corner : corners(face)) {
            corner.p = mesh.points + copies[pointOf(mesh, corner)];
        }
    }
    finish(mesh, mesh.np - before);
}

void unweldSelectedParts(Mesh& mesh) {
    PartTables t(mesh);
    if (!t.ready()) return;
    sortByParts(mesh, t);
    const std::int32_t before = mesh.np;
    if (!mesh.growPoints(before + countUses(mesh, t), false)) return;
    unweldPartByPart(mesh, t);
    finish(mesh, mesh.np - before);
}

} // namespace polyfab
