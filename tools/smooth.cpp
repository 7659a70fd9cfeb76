// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/smooth.h"

#include "geometry/projection.h"
#include "mesh/faces.h"
#include "mesh/screen_positions.h"
#include "mesh/stale.h"
#include "platform/platform.h"
#include "tools/asking.h"
#include "tools/collect.h"
#include "tools/point_normals.h"
#include "workbench/long_work.h"
#include "workbench/notes.h"
#include "workbench/prompts.h"
#include "workbench/state.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <string>

namespace polyfab {
namespace {

Vec3 average(const Vec3& sum, double count) {
    return {sum.x / count, sum.y / count, sum.z / count};
}

using Coordinate = double Vec3::*;

/// Of an axis its coordinate; null for none.
Coordinate coordinateOf(char axis) {
    constexpr Coordinate of[] = {&Vec3::x, &Vec3::y, &Vec3::z};
    return axis == 0 ? nullptr : of[axis - 'x'];
}

/// Sine of the angle between an edge and the axis of that coordinate; 1.1 of an edge without
/// length.
double sineToAxis(Vec3 edge, Coordinate axis) {
    const double square = dot(edge, edge);
    if (square == 0) return 1.1;
    edge.*axis = 0;
    return std::sqrt(dot(edge, edge) / square);
}

/// Edges at a larger angle to the axis take no part. No sine is as large as this: all of them do.
constexpr double largestSine = 1e99;

/// Sets the mark of the points that are free to move.
void markFree(Mesh& mesh) {
    for (Point* p = mesh.points; p != mesh.points + mesh.np; ++p) p->mark = 1;
    for (const Face& face : liveFaces(mesh)) {
        if (face.selected) continue;
        for (const FaceCorner& corner : corners(face)) corner.p->mark = 0;
    }
}

/// Calls use(point before, point) for each corner of each live face. That puts the last side of a
/// face first; in another order sums would round differently.
template <typename Use>
void eachSide(const Mesh& mesh, Use use) {
    for (const Face& face : liveFaces(mesh)) {
        std::int32_t before = face.n < 1 ? 0 : pointAt(mesh, face, face.n - 1);
        for (const FaceCorner& corner : corners(face)) {
            const std::int32_t at = pointOf(mesh, corner);
            use(before, at);
            before = at;
        }
    }
}

void tellMoved(const Mesh& mesh, std::int32_t points) {
    noteOfSelected(mesh, "smoothed: " + counted(points, "point") + " moved");
}

} // namespace

void smoothDents(Mesh& mesh) {
    if (!collectForTool(mesh)) return;
    markUsers(mesh);
    SelectedSurface surface(mesh);
    Table<Vec3> sum(mesh.np, Vec3{});
    Table<std::int32_t> neighbours(mesh.np, 0);
    Table<double> depth(mesh.np, 0.0);
    if (!surface || !sum || !neighbours || !depth) return;
    tellProgress(1, 4);
    surface.findNormals();
    tellProgress(2, 4);
    surface.smoothNormals();
    tellProgress(3, 4);
    // Along the normal from the point to the average, times the number of neighbours; summed up
    // from the differences, which are exact where the surface is fine.
    const auto addNeighbour = [&](std::int32_t point, std::int32_t neighbour) {
        const Vec3& there = surface.position[neighbour];
        sum[point] += there;
        ++neighbours[point];
        depth[point] += dot(there - surface.position[point], surface.normal[point]);
    };
    surface.eachSide([&](std::int32_t before, std::int32_t at) {
        addNeighbour(before, at);
        addNeighbour(at, before);
    });
    std::int32_t moved = 0;
    for (std::int32_t i = 0; i < mesh.np; ++i) {
        Point& p = mesh.points[i];
        if (p.mark != ofSelected || !surface.hasCornerNormal[i]) continue;
        const Vec3 mean = average(sum[i], neighbours[i]);
        const double reach = largestPart(mean) + largestPart(surface.position[i]);
        // What rounding makes of a flat surface is no dent.
        if (!(reach <= DBL_MAX) || !(depth[i] > 16 * DBL_EPSILON * neighbours[i] * reach)) continue;
        moveTo(p, mean);
        ++moved;
    }
    tellMoved(mesh, moved);
    mesh.changed = 1;
    stale.points = true;
}

void smoothView(Mesh& mesh, char axis) {
    Table<Vec3> sum(mesh.np, Vec3{});
    Table<float> weight(mesh.np, 0.0F);
    if (!sum || !weight) return;
    transformPoints(mesh);
    tellProgress(1, 3);
    markFree(mesh);
    tellProgress(2, 3);
    const Coordinate coordinate = coordinateOf(axis);
    eachSide(mesh, [&](std::int32_t before, std::int32_t at) {
        const Point &b = mesh.points[before], &c = mesh.points[at];
        if (!b.mark && !c.mark) return;
        const Vec3 start = screenPosition(b), end = screenPosition(c);
        if (coordinate && sineToAxis(start - end, coordinate) > largestSine) return;
        ++weight[before];
        ++weight[at];
        sum[at] += start;
        sum[before] += end;
    });
    std::int32_t moved = 0;
    for (std::int32_t i = 0; i < mesh.np; ++i) {
        Point& p = mesh.points[i];
        if (!p.mark || weight[i] == 0) continue;
        const Vec3 mean = average(sum[i], static_cast<double>(weight[i]));
        Vec3 to = coordinate ? screenPosition(p) : mean;
        if (coordinate) to.*coordinate = mean.*coordinate;
        moveTo(p, projection.toWorld(to));
        ++moved;
    }
    tellMoved(mesh, moved);
    mesh.changed = 1;
    stale.points = true;
}

void askSmoothingAxis() {
    constexpr char axes[] = {'z', 'y', 'x'}; // by the answers -1, 0 and 1
    char axis = 0;
    if (platform().question("", "do you want to restrict smoothing?", Buttons::yesNo)
        == Choice::yes) {
        axis = axes[askYesNoCancel("(yes=X, no=Y, cancel=Z)", "which axis to smooth along?") + 1];
    }
    workbench.smoothingAxis = axis;
    note(axis == 0 ? "smoothing is not restricted" : std::string("smoothing moves along ") + axis);
}

} // namespace polyfab
