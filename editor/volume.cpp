// SPDX-License-Identifier: GPL-3.0-or-later
// By the divergence theorem a closed surface bounds a third of the sum of c . a over its faces, c
// being any point of the face's plane and a its vector area, which points outwards when the corners
// run anticlockwise as seen from outside. For a face that is not flat c is the mean of its corners.
#include "editor/volume.h"

#include "io/print_number.h"
#include "mesh/mesh.h"
#include "mesh/projection.h"
#include "mesh/table.h"
#include "platform/platform.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace polyfab {
namespace {

/// Calls `use` with the ends of every edge of the selected live faces, in their direction.
template <typename Use>
void eachSelectedEdge(const Mesh& mesh, Use use) {
    for (const Face* face = mesh.faces; face != mesh.faces + mesh.nf; ++face) {
        if (face->q == nullptr || !face->selected) continue;
        for (int k = 0; k < face->n; ++k) {
            const int next = k + 1 == face->n ? 0 : k + 1;
            use(indexIn(mesh.points, face->q[k].p), indexIn(mesh.points, face->q[next].p));
        }
    }
}

/// Edges along which more selected faces run one way than the other, or -1 without memory. Equal
/// edges are brought together by sorting: the two points, the lower one first, then the direction.
std::int64_t countOpenEdges(const Mesh& mesh) {
    std::int64_t count = 0;
    eachSelectedEdge(mesh, [&](std::int32_t, std::int32_t) { ++count; });
    Table<std::uint64_t> runs(count);
    if (!runs) return -1;
    count = 0;
    eachSelectedEdge(mesh, [&](std::int32_t from, std::int32_t to) {
        const auto low = static_cast<std::uint64_t>(std::min(from, to));
        const auto high = static_cast<std::uint64_t>(std::max(from, to));
        if (low != high) runs[count++] = low << 32 | high << 1 | (from < to ? 1U : 0U);
    });
    std::uint64_t* const end = &runs[0] + count;
    std::sort(&runs[0], end);
    std::int64_t open = 0;
    for (const std::uint64_t* run = &runs[0]; run != end;) {
        const std::uint64_t edge = *run >> 1;
        int balance = 0;
        for (; run != end && *run >> 1 == edge; ++run) balance += (*run & 1) != 0 ? 1 : -1;
        if (balance != 0) ++open;
    }
    return open;
}

/// Three times c . a, of positions relative to `origin`, and doubled.
double sixfoldVolume(const Face& face, const Point& origin) {
    Vec3 sum;
    Vec3 area;
    for (int k = 0; k < face.n; ++k) {
        const Point& p = *face.q[k].p;
        const Point& q = *face.q[k + 1 == face.n ? 0 : k + 1].p;
        const Vec3 a{p.x - origin.x, p.y - origin.y, p.z - origin.z};
        const Vec3 b{q.x - origin.x, q.y - origin.y, q.z - origin.z};
        sum = {sum.x + a.x, sum.y + a.y, sum.z + a.z};
        area = {area.x + a.y * b.z - a.z * b.y, area.y + a.z * b.x - a.x * b.z,
                area.z + a.x * b.y - a.y * b.x};
    }
    return (sum.x * area.x + sum.y * area.y + sum.z * area.z) / face.n;
}

/// Positive when the faces face outwards. The origin is one of their points, so that a small
/// surface far away does not drown in large summands.
double volumeWithin(const Mesh& mesh) {
    const Point* origin = nullptr;
    double sum = 0;
    for (const Face* face = mesh.faces; face != mesh.faces + mesh.nf; ++face) {
        if (face->q == nullptr || !face->selected || face->n < 1) continue;
        if (origin == nullptr) origin = face->q->p;
        sum += sixfoldVolume(*face, *origin);
    }
    return sum / 6;
}

bool anySelected(const Mesh& mesh) {
    return std::any_of(mesh.faces, mesh.faces + mesh.nf,
                       [](const Face& face) { return face.q != nullptr && face.selected; });
}

} // namespace

void tellVolume() {
    if (!anySelected(*OB)) return platform().message("", "no face is selected", Icon::none);
    const std::int64_t open = countOpenEdges(*OB);
    if (open < 0) return;
    if (open > 0) {
        platform().message("the selected faces do not bound a volume",
                           std::to_string(open)
                               + " of their edges are open or run twice the same way",
                           Icon::exclamation);
        return;
    }
    const double volume = volumeWithin(*OB);
    char text[numberRoom];
    platform().message("absolute volume bounded by the selected faces",
                       std::string(text, printG6(text, std::abs(volume), 0))
                           + (volume < 0 ? " (they face inwards)" : ""),
                       Icon::none);
}

} // namespace polyfab
