// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/thin/thin_out.h"

#include "mesh/faces.h"
#include "mesh/stale.h"
#include "tools/asking.h"
#include "tools/collect.h"
#include "tools/thin/thin_queue.h"
#include "tools/thin/thin_surface.h"
#include "workbench/long_work.h"
#include "workbench/notes.h"
#include "workbench/prompts.h"
#include "workbench/state.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace polyfab {
namespace {

struct Answers {
    double percent = 0, farthest = 0;
};

bool askBoth(Answers& answers) {
    if (askNumbers2("percent of faces to keep?", "50", answers.percent, "max distance? (0 = any)",
                    "0", answers.farthest)
        == 0) {
        if (prompts.cancelled) return false;
        return isWithin(std::nan(""), 0, 100);
    }
    return isWithin(answers.percent, 0, 100)
           && isWithin(answers.farthest, 0, std::numeric_limits<double>::max());
}

/// Puts what is left of the faces back into the mesh.
class ThinInstaller {
  public:
    ThinInstaller(Mesh& target, const ThinSurface& thinned, const Table<std::uint8_t>& changes)
        : mesh(target), surface(thinned), changed(changes) {}

    /// False without room; the mesh is then what a failed growth leaves.
    bool install() {
        std::int64_t newFaces = 0, newCorners = 0;
        for (std::int32_t t = 0; t < surface.triangles; ++t) {
            const bool further = t > 0 && surface.owner[t] == surface.owner[t - 1];
            newFaces += further ? 1 : 0;
            newCorners += mesh.faces[surface.owner[t]].n > 3 ? 3 : 0;
        }
        if (!mesh.growFaces(mesh.nf + newFaces, false)
            || !mesh.growCorners(mesh.nq + newCorners, false) || !enterRecords()) {
            return false;
        }
        for (std::int32_t first = 0; first < surface.triangles;) {
            std::int32_t end = first + 1;
            while (end < surface.triangles && surface.owner[end] == surface.owner[first]) ++end;
            installFace(first, end);
            first = end;
        }
        movePoints();
        mesh.changed = 1;
        stale.points = stale.edges = true;
        return true;
    }

  private:
    /// All of them; the collection drops those that nothing uses in the end.
    bool enterRecords() {
        const auto more = [](std::int32_t count, const auto& added) {
            return std::int64_t{count} + std::ssize(added);
        };
        if ((!surface.newTexCoords.empty()
             && !mesh.growTexCoords(more(mesh.nt, surface.newTexCoords), false))
            || (!surface.newNormals.empty()
                && !mesh.growNormals(more(mesh.nd, surface.newNormals), false))) {
            return false;
        }
        std::copy(surface.newTexCoords.begin(), surface.newTexCoords.end(),
                  mesh.texcoords + mesh.nt);
        std::copy(surface.newNormals.begin(), surface.newNormals.end(), mesh.normals + mesh.nd);
        mesh.nt += static_cast<std::int32_t>(surface.newTexCoords.size());
        mesh.nd += static_cast<std::int32_t>(surface.newNormals.size());
        return true;
    }

    void installFace(std::int32_t first, std::int32_t end) {
        bool any = false;
        for (std::int32_t t = first; t < end; ++t) any = any || changed[t] != 0;
        if (!any) return;
        const std::int32_t number = surface.owner[first];
        const Face whole = mesh.faces[number];
        mesh.faces[number].q = nullptr;
        bool placed = false;
        for (std::int32_t t = first; t < end; ++t) {
            if (surface.pointAt(3 * t) < 0) continue;
            Face& face = mesh.faces[placed ? mesh.nf++ : number];
            placed = true;
            face = whole;
            face.n = 3;
            // The corners of a triangle have room where they were.
            if (whole.n > 3) {
                face.q = mesh.corners + mesh.nq;
                mesh.nq += 3;
            }
            for (std::int32_t k = 0; k < 3; ++k) face.q[k] = cornerOf(3 * t + k);
        }
    }

    [[nodiscard]] FaceCorner cornerOf(std::int32_t c) const {
        const auto& [p, t, d] = surface.corner[c];
        return {mesh.points + p, d < 0 ? nullptr : mesh.normals + d,
                t < 0 ? nullptr : mesh.texcoords + t, 2, 0};
    }

    void movePoints() {
        for (std::int32_t t = 0; t < surface.triangles; ++t) {
            if (changed[t] == 0 || surface.pointAt(3 * t) < 0) continue;
            for (std::int32_t k = 0; k < 3; ++k) {
                const std::int32_t p = surface.pointAt(3 * t + k);
                if (surface.moved[p] != 0)
                    moveTo(mesh.points[p], surface.toWorld(surface.place[p]));
            }
        }
    }

    Mesh& mesh;
    const ThinSurface& surface;
    const Table<std::uint8_t>& changed;
};

const char* reasonFor(ThinEnd end) {
    switch (end) {
        case ThinEnd::tooFar:
            return "; the rest would move farther than that";
        case ThinEnd::nothingLeft:
            return "; more would fold the surface or tear its lines";
        default:
            return "";
    }
}

} // namespace

void thinOut(Mesh& mesh) {
    Answers answers;
    if (!hasFacesTo(mesh, "thin out") || !askBoth(answers)) return;
    std::int64_t selected = 0;
    for ([[maybe_unused]] const Face& face : selectedFaces(mesh)) ++selected;
    ThinSurface surface(mesh);
    if (!surface.build()) return;
    Table<std::uint8_t> changed(surface.triangles, 0);
    if (!changed) return;
    const auto wanted = static_cast<std::int64_t>(
        std::llround(static_cast<double>(selected) * answers.percent / 100));
    std::int64_t now = selected;
    const ThinEnd end =
        thinSurface(surface, {wanted, answers.farthest / surface.unitLength()}, now, changed);
    if (end == ThinEnd::stopped || end == ThinEnd::noMemory) return;
    // Faces of many corners may have become more triangles than they were faces.
    now = std::min(now, selected);
    if (now < selected) {
        tellTooLateToStop();
        if (!ThinInstaller(mesh, surface, changed).install() || !collectForTool(mesh)) return;
    }
    std::string text = (selected == 1 ? "there was " : "there were ") + counted(selected, "face")
                       + (now == 1 ? "; now there is " : "; now there are ") + counted(now)
                       + (surface.triangles > 0 ? reasonFor(end) : "");
    if (surface.facesLeftOut > 0) {
        text += "; I left out " + counted(surface.facesLeftOut, "face") + " that can't be cut up";
    }
    note(text);
}

} // namespace polyfab
