// SPDX-License-Identifier: GPL-3.0-or-later
// The steps are taken in tables, and the mesh keeps the original positions until all are done: that
// is all the memory of them that the border needs.
#include "tools/thicken.h"

#include "mesh/edges.h"
#include "mesh/faces.h"
#include "mesh/stale.h"
#include "platform/platform.h"
#include "tools/collect.h"
#include "tools/point_normals.h"
#include "workbench/long_work.h"
#include "workbench/prompts.h"
#include "workbench/title.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace polyfab {
namespace {

struct Answers {
    double thickness;
    double step;
    double passes;
    bool keepsSign; ///< no point crosses x = 0
    Choice moveBorder;
};

Answers askAll() {
    Answers answers{};
    answers.thickness = askNumber("thickness to add?", ".005");
    answers.step = askNumber("increment step?", ".005");
    answers.passes = askNumber("how many iterations of smoothing the normals?", "30");
    answers.keepsSign =
        platform().question("", "do you want to avoid changing the sign of x?", Buttons::yesNo)
        == Choice::yes;
    answers.moveBorder =
        platform().question("shall I move the edge points?", "(cancel = put a step along the edge)",
                            Buttons::yesNoCancel);
    return answers;
}

constexpr double mostPasses = 1e9;

/// Whether what was asked for comes to an end at finite places, and not after a lifetime: nothing
/// can stop it on the way.
bool ends(const Answers& answers) {
    if (!(answers.step > 0 && answers.thickness > 0)) return true;
    const double rounds = answers.thickness / answers.step;
    return std::isfinite(answers.step) && rounds <= mostPasses
           && !(rounds * answers.passes > mostPasses) && !(answers.passes > mostPasses);
}

void moveOut(const Mesh& mesh, SelectedSurface& surface, const Answers& answers) {
    for (std::int32_t i = 0; i < mesh.np; ++i) {
        if (!surface.hasCornerNormal[i] || isZero(surface.normal[i])) continue;
        const Vec3 way = unit(surface.normal[i]) * answers.step;
        const double x = surface.position[i].x;
        // A point that would just reach 0 may go there.
        if (answers.keepsSign && way.x * x < 0 && x * x < way.x * way.x) continue;
        surface.position[i] += way;
    }
}

void takeSteps(const Mesh& mesh, SelectedSurface& surface, const Answers& answers) {
    if (!(answers.step > 0)) return;
    const int passes =
        answers.passes > 0 ? static_cast<int>(std::min(answers.passes, mostPasses)) : 0;
    for (double done = 0; done < answers.thickness; done += answers.step) {
        surface.findNormals();
        for (int left = passes; left > 0; --left) {
            showTitle("%g:%d", answers.thickness - done, left);
            const double stepDone = 1 - left / (passes + 1.0);
            tellProgress(done + stepDone * answers.step, answers.thickness);
            surface.smoothNormals();
        }
        moveOut(mesh, surface, answers);
        tellProgress(done + answers.step, answers.thickness);
    }
}

/// Marks the corners of selected faces that a wall is to stand on, those whose side has both its
/// ends on the border, and gives their number.
std::int64_t markWalls(Mesh& mesh) {
    std::int64_t walls = 0;
    for (std::int32_t c = 0; c < mesh.nq; ++c) mesh.corners[c].mark = 0;
    for (const Face& face : selectedFaces(mesh)) {
        for (const auto& [from, to] : sides(face)) {
            if (from.p->mark != ofBoth || to.p->mark != ofBoth) continue;
            from.mark = 1;
            ++walls;
        }
    }
    return walls;
}

/// The wall runs the side against the face, and its copy `copies` points further on along with it.
void appendWall(Mesh& mesh, const Face& face, int place, std::int32_t copies) {
    const FaceCorner from = face.q[place];
    const FaceCorner to = cornerAfter(face, place);
    Face& wall = mesh.faces[mesh.nf++];
    wall = face;
    wall.q = mesh.corners + mesh.nq;
    wall.n = 4;
    for (const FaceCorner& corner : {to, from, from, to}) {
        mesh.corners[mesh.nq] = corner;
        mesh.corners[mesh.nq++].edgeuse = 0; // of another edge; that of this one is yet to be found
    }
    wall.q[2].p += copies;
    wall.q[3].p += copies;
}

/// Gives the unselected faces copies of all points, where those are now, and puts walls between
/// there and the border of the selected faces. False without room for it; the mesh is then what a
/// failed growth leaves.
bool buildWalls(Mesh& mesh) {
    const std::int32_t np = mesh.np, nf = mesh.nf;
    const std::int64_t walls = markWalls(mesh);
    if (!mesh.growPoints(2 * std::int64_t{np}, false) || !mesh.growFaces(nf + walls, false)
        || !mesh.growCorners(mesh.nq + 4 * walls, false)) {
        return false;
    }
    for (std::int32_t i = 0; i < np; ++i) copyPoint(mesh, i);
    for (std::int32_t i = 0; i < nf; ++i) {
        const Face& face = mesh.faces[i];
        for (int k = 0; isLive(face) && k < face.n; ++k) {
            if (!face.selected) {
                face.q[k].p += np;
            } else if (face.q[k].mark) {
                appendWall(mesh, face, k, np);
            }
        }
    }
    return true;
}

/// Makes the walls, which are the faces from `first` on, a part by which they can be picked. A wall
/// with a side of four uses goes: where walls stand back to back on a side that runs across the
/// selected faces from border to border, or meet at a point that patches share, and their
/// neighbours there.
void finishWalls(Mesh& mesh, std::int32_t first) {
    checkEdges(mesh, false, false, false);
    const bool full = mesh.nprt >= maxIndexed;
    if (full)
        platform().message("", "there is no number left for the part of the walls", Icon::none);
    const int part = full ? 0 : mesh.addPart();
    for (std::int32_t i = first; i < mesh.nf; ++i) {
        Face& wall = mesh.faces[i];
        if (!isLive(wall)) continue;
        wall.prt = static_cast<std::int16_t>(part);
        if (std::any_of(wall.q, wall.q + wall.n,
                        [](const FaceCorner& corner) { return corner.edgeuse == 4; })) {
            wall.q = nullptr;
        }
    }
    (void)collectForTool(mesh);
}

void placePoints(Mesh& mesh, const SelectedSurface& surface, std::int32_t count, bool borderToo) {
    for (Point *p = mesh.points, *end = p + count; p != end; ++p) {
        if (!borderToo && p->mark == ofBoth) continue;
        moveTo(*p, surface.position[p - mesh.points]);
    }
    stale.points = true;
}

} // namespace

void thicken(Mesh& mesh) {
    if (!collectForTool(mesh)) return;
    const SavedTitle title(512);
    showTitle("working out normals");
    const Answers answers = askAll();
    if (!ends(answers)) {
        platform().message("", "I can't count that far", Icon::exclamation);
        return;
    }
    SelectedSurface surface(mesh);
    if (!surface) return;
    takeSteps(mesh, surface, answers);
    markUsers(mesh);
    const bool step = answers.moveBorder == Choice::cancel;
    const std::int32_t np = mesh.np, nf = mesh.nf;
    if (step && !buildWalls(mesh)) return;
    mesh.changed = 1;
    placePoints(mesh, surface, np, answers.moveBorder != Choice::no);
    if (step) finishWalls(mesh, nf);
}

} // namespace polyfab
