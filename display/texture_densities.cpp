// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/texture_densities.h"

#include "mesh/faces.h"
#include "picture/workers.h"

#include <algorithm>
#include <cmath>

namespace polyfab {
namespace {

constexpr std::size_t pieceSize = 1 << 14;

/// What the triangles of one face add up to.
class FaceSum {
  public:
    FaceSum(const Mesh& of, const TriangleList& listed) : mesh(of), list(listed) {}

    void add(std::size_t t) {
        const RasterTriangle& triangle = list.triangles[t];
        const double sign = triangle.turned != 0 ? -1 : 1;
        const Vec3 from = at(triangle.corner[0]);
        area += cross(at(triangle.corner[1]) - from, at(triangle.corner[2]) - from) * sign;
        const auto& corner = list.texCoords[t].corner;
        for (const std::uint32_t k : corner) isWhole &= k < static_cast<std::uint32_t>(mesh.nt);
        if (!isWhole) return;
        const TexCoord &a = mesh.texcoords[corner[0]], &b = mesh.texcoords[corner[1]],
                       &c = mesh.texcoords[corner[2]];
        shown += sign * ((b.u - a.u) * (c.v - a.v) - (b.v - a.v) * (c.u - a.u));
    }
    float density() const {
        const double times = std::abs(shown) / std::sqrt(dot(area, area));
        return isWhole && std::isfinite(times) ? static_cast<float>(times) : 0;
    }

  private:
    Vec3 at(std::uint32_t point) const { return worldPosition(mesh.points[list.pointOf[point]]); }

    const Mesh& mesh;
    const TriangleList& list;
    Vec3 area;
    double shown = 0;
    bool isWhole = true;
};

} // namespace

void findTextureDensities(const Mesh& mesh, const TriangleList& list,
                          std::vector<float>& densities) {
    const std::size_t all = list.triangles.size();
    densities.resize(all);
    // Who has the first triangle of a face goes on to its last one.
    inPieces(all, pieceSize, [&](std::size_t from, std::size_t to) {
        for (std::size_t t = from; t < to;) {
            const std::uint32_t face = list.triangles[t].face;
            std::size_t end = t;
            FaceSum sum(mesh, list);
            while (end < all && list.triangles[end].face == face) sum.add(end++);
            const bool isFirst = t == 0 || list.triangles[t - 1].face != face;
            if (isFirst) std::fill_n(&densities[t], end - t, sum.density());
            t = end;
        }
    });
}

} // namespace polyfab
