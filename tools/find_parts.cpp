// SPDX-License-Identifier: GPL-3.0-or-later
// One flood from each face that no part has reached yet, lowest first, across the mates of corners.
// Whether a face leads to its neighbour depends on these two alone, so a part is all that its first
// face leads to without the earlier parts, in whatever order the flood goes on.
#include "tools/find_parts.h"

#include "mesh/edges.h"
#include "mesh/face_angle.h"
#include "mesh/faces.h"
#include "mesh/table.h"
#include "tools/collect.h"
#include "tools/too_many.h"
#include "workbench/long_work.h"
#include "workbench/notes.h"
#include "workbench/prompts.h"
#include "workbench/title.h"

#include <algorithm>
#include <cstdint>

namespace polyfab {
namespace {

/// In `prt` of a live face: it lies in no part yet.
constexpr std::int16_t noPart = -1;

class Flood {
  public:
    /// The edge tables of the mesh must be built.
    Flood(Mesh& owner, double angle)
        : progress(owner.nf), mesh(owner), maxAngle(angle), waiting(mesh.nf),
          normals(angle != 0 ? mesh.nf : 0) {}

    /// False after a message box: there was no memory, and the flood must not start.
    explicit operator bool() const { return waiting && normals; }

    LoopProgress progress; ///< of the faces that are in a part

    void start() {
        LoopProgress started(mesh.nf);
        for (std::int32_t i = 0; i < mesh.nf; ++i) {
            started.step();
            Face& face = mesh.faces[i];
            if (!isLive(face)) continue;
            face.prt = noPart;
            if (maxAngle != 0) normals[i] = faceNormal(face);
        }
    }

    /// Gives the number to the face and to all that it leads to.
    void fill(std::int32_t face, std::int16_t number) {
        enter(face, number);
        while (count > 0) {
            const std::int32_t from = waiting[--count];
            const Face& fac = mesh.faces[from];
            const std::int32_t first = indexIn(mesh.corners, fac.q);
            for (std::int32_t c = first; c < first + fac.n; ++c) {
                if (mesh.corners[c].edgeuse != 2 || mesh.cornerMate[c] < 0) continue;
                const auto to = static_cast<std::int32_t>(mesh.cornerFace[mesh.cornerMate[c]].face);
                if (mesh.faces[to].prt == noPart && areJoined(from, to)) enter(to, number);
            }
        }
    }

  private:
    void enter(std::int32_t face, std::int16_t number) {
        progress.step();
        mesh.faces[face].prt = number;
        waiting[count++] = face;
    }

    bool areJoined(std::int32_t a, std::int32_t b) const {
        return maxAngle == 0 || maxAngle > angleBetween(normals[a], normals[b]);
    }

    Mesh& mesh;
    double maxAngle;
    Table<std::int32_t> waiting; ///< faces of the part whose neighbours were not looked at yet
    std::int32_t count = 0;
    Table<Vec3> normals; ///< of the faces; none when the angle does not matter
};

/// Gives the number of parts, which may be more than the table holds.
std::int32_t numberParts(Mesh& mesh, Flood& flood) {
    const SavedTitle title(256);
    flood.start();
    mesh.nprt = 0;
    std::int32_t found = 0;
    for (std::int32_t i = 0; i < mesh.nf; ++i) {
        if (!isLive(mesh.faces[i]) || mesh.faces[i].prt != noPart) continue;
        flood.progress.tell();
        showTitle("%6d parts found", found);
        flood.fill(i, static_cast<std::int16_t>(std::min(found, maxIndexed - 1)));
        // A table that did not grow once is not tried again.
        if (mesh.nprt == found && found < maxIndexed) mesh.addPart();
        ++found;
    }
    return found;
}

} // namespace

void findparts(Mesh& mesh, double maxAngle) {
    if (!buildEdges(mesh)) return;
    moveProgress();
    std::int32_t found = 0;
    if (Flood flood(mesh, maxAngle); flood) found = numberParts(mesh, flood);
    freeEdges(mesh);
    note("found " + counted(found, "part"));
    tellIfTooMany(found, "parts");
}

void askAndFindParts(Mesh& mesh) {
    const int separate =
        askYesNoCancel("do you want to separate parts at sharp angles between faces?");
    if (separate < 0) return;
    const double maxAngle =
        separate ? askNumber("max allowed dihedral angle(deg)? (flat=0)", "0") : 0;
    if (collectForTool(mesh)) findparts(mesh, maxAngle);
}

} // namespace polyfab
