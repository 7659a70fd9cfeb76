// SPDX-License-Identifier: GPL-3.0-or-later
// By the divergence theorem a closed surface bounds a third of the sum of c . a over its faces, c
// being any point of the face's plane and a its vector area, which points outwards when the corners
// run anticlockwise as seen from outside. For a face that is not flat c is the mean of its corners.
#include "editor/commands/volume.h"

#include "editor/commands/selection.h"
#include "geometry/vec3.h"
#include "io/print_number.h"
#include "mesh/faces.h"
#include "mesh/mesh.h"
#include "mesh/table.h"
#include "platform/platform.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace polyfab {
namespace {

/// Edges along which more selected faces run one way than the other, or -1 without memory. Equal
/// edges are brought together by sorting: the two points, the lower one first, then the direction.
std::int64_t countOpenEdges(const Mesh& mesh) {
    std::int64_t count = 0;
    for (const Face& face : selectedFaces(mesh)) count += std::ssize(corners(face));
    Table<std::uint64_t> runs(count);
    if (!runs) return -1;
    count = 0;
    for (const Face& face : selectedFaces(mesh)) {
        for (const auto& [from, to] : sides(face)) {
            if (from.p == to.p) continue;
            const auto [low, high] = std::minmax({pointOf(mesh, from), pointOf(mesh, to)});
            runs[count++] = static_cast<std::uint64_t>(low) << 32
                            | static_cast<std::uint64_t>(high) << 1 | (from.p < to.p ? 1U : 0U);
        }
    }
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

/// Positions from a point of the surface and in units of its extent: a small surface far away does
/// not drown in large summands, and no product overflows or vanishes.
struct Frame {
    const Point* origin = nullptr;
    double extent = 0;

    Vec3 operator()(const Point& p) const {
        return {(p.x - origin->x) / extent, (p.y - origin->y) / extent, (p.z - origin->z) / extent};
    }
};

Frame frameOf(const Mesh& mesh) {
    Frame frame;
    for (const Face& face : selectedFaces(mesh)) {
        for (const FaceCorner& corner : corners(face)) {
            const Point& p = *corner.p;
            if (frame.origin == nullptr) frame.origin = &p;
            frame.extent =
                std::max({frame.extent, std::abs(p.x - frame.origin->x),
                          std::abs(p.y - frame.origin->y), std::abs(p.z - frame.origin->z)});
        }
    }
    return frame;
}

/// Three times c . a, and doubled.
double sixfoldVolume(const Face& face, const Frame& frame) {
    Vec3 sum;
    Vec3 area;
    for (const auto& [from, to] : sides(face)) {
        const Vec3 a = frame(*from.p);
        const Vec3 b = frame(*to.p);
        sum += a;
        area = {area.x + a.y * b.z - a.z * b.y, area.y + a.z * b.x - a.x * b.z,
                area.z + a.x * b.y - a.y * b.x};
    }
    return dot(sum, area) / face.n;
}

/// Positive when the faces face outwards.
double volumeWithin(const Mesh& mesh) {
    const Frame frame = frameOf(mesh);
    if (frame.extent == 0) return 0;
    double sum = 0;
    for (const Face& face : selectedFaces(mesh)) {
        if (face.n > 0) sum += sixfoldVolume(face, frame);
    }
    return sum / 6 * frame.extent * frame.extent * frame.extent;
}

} // namespace

void tellVolume() {
    if (!hasSelection()) return;
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
