// SPDX-License-Identifier: GPL-3.0-or-later
// The curve is that of Morton, "A computer oriented geodetic data base", 1966; faces are brought
// into its order by a radix sort, which leaves those of the same place in theirs.
#include "display/triangle_list.h"

#include "display/cut_face.h"
#include "display/edge_list.h"
#include "mesh/faces.h"
#include "picture/workers.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <limits>
#include <tuple>

namespace polyfab {
namespace {

constexpr std::size_t pieceSize = 1 << 14; ///< faces for one worker at a time

bool isDrawn(const Mesh& mesh, const Face& face) { return face.n >= 3 && isSound(mesh, face); }

/// A face and its place on the curve.
struct Placed {
    std::uint32_t code;
    std::uint32_t face;
};

/// The bits of a number below 1024, each followed by two zeros.
std::uint32_t spread(std::uint32_t bits) {
    bits = (bits | bits << 16) & 0x030000FF;
    bits = (bits | bits << 8) & 0x0300F00F;
    bits = (bits | bits << 4) & 0x030C30C3;
    return (bits | bits << 2) & 0x09249249;
}

/// Cubes of space, 1024 along the longest side of the mesh.
class Curve {
  public:
    explicit Curve(const Mesh& mesh) {
        constexpr double most = std::numeric_limits<double>::max();
        Vec3 high{-most, -most, -most};
        low = high * -1;
        for (int i = 0; i < mesh.np; ++i) {
            const Vec3 p = worldPosition(mesh.points[i]);
            if (!(largestPart(p) <= 1e300)) continue;
            for (int axis = 0; axis < 3; ++axis) {
                along(low, axis) = std::min(along(low, axis), along(p, axis));
                along(high, axis) = std::max(along(high, axis), along(p, axis));
            }
        }
        const double side = largestPart(high - low);
        scale = side > 0 ? cells / side : 0;
    }

    std::uint32_t codeOf(const Face& face) const {
        Vec3 sum;
        for (const FaceCorner& corner : corners(face)) sum += worldPosition(*corner.p);
        const double share = 1.0 / face.n;
        return spread(cell(sum.x * share - low.x)) | spread(cell(sum.y * share - low.y)) << 1
               | spread(cell(sum.z * share - low.z)) << 2;
    }

  private:
    static constexpr double cells = 1024;
    std::uint32_t cell(double along) const {
        const double place = along * scale;
        return place >= 0 && place < cells ? static_cast<std::uint32_t>(place) : 0;
    }
    Vec3 low;
    double scale;
};

/// By the ten bits from `shift` on.
void sortByDigit(const std::vector<Placed>& from, std::vector<Placed>& to, int shift) {
    constexpr std::uint32_t digits = 1024;
    std::array<std::size_t, digits + 1> start{};
    for (const Placed& entry : from) ++start[(entry.code >> shift) % digits + 1];
    for (std::size_t i = 0; i < digits; ++i) start[i + 1] += start[i];
    for (const Placed& entry : from) to[start[(entry.code >> shift) % digits]++] = entry;
}

/// The faces to be drawn, along the curve.
std::vector<Placed> placedFaces(const Mesh& mesh) {
    const Curve curve(mesh);
    std::vector<Placed> faces, spare;
    faces.reserve(static_cast<std::size_t>(mesh.nf));
    for (int i = 0; i < mesh.nf; ++i) {
        const Face& face = mesh.faces[i];
        if (!isDrawn(mesh, face)) continue;
        faces.push_back({curve.codeOf(face), static_cast<std::uint32_t>(i)});
    }
    spare.resize(faces.size());
    sortByDigit(faces, spare, 0);
    sortByDigit(spare, faces, 10);
    sortByDigit(faces, spare, 20);
    return spare;
}

/// Numbers given out in the order in which they are first asked for.
class Renumbering {
  public:
    Renumbering(std::int32_t count, std::vector<std::uint32_t>& givenTo)
        : numbers(static_cast<std::size_t>(count), TriangleList::none), given(givenTo) {
        given.clear();
    }
    std::uint32_t operator()(std::size_t index) {
        std::uint32_t& number = numbers[index];
        if (number == TriangleList::none) {
            number = static_cast<std::uint32_t>(given.size());
            given.push_back(static_cast<std::uint32_t>(index));
        }
        return number;
    }

  private:
    std::vector<std::uint32_t> numbers;
    std::vector<std::uint32_t>& given;
};

/// Where the address lies, counted from the start of the array.
std::uint64_t offset(const void* array, const void* address) {
    return reinterpret_cast<std::uintptr_t>(address) - reinterpret_cast<std::uintptr_t>(array);
}

class Lister {
  public:
    Lister(const Mesh& listed, TriangleList& into, bool texCoordsToo)
        : mesh(listed), list(into), withTexCoords(texCoordsToo), points(mesh.np, list.pointOf),
          normals(mesh.nd, list.normalOf) {}

    void add(std::uint32_t index) {
        const Face& face = mesh.faces[index];
        if (face.n == 3) return add(index, face, {{0, 1, 2}});
        places.clear();
        for (const FaceCorner& corner : corners(face)) places.push_back(worldPosition(*corner.p));
        for (const CutTriangle& triangle : cutter.cut(places)) add(index, face, triangle);
    }

  private:
    static bool comesBefore(const Point& a, const Point& b) {
        return std::tie(a.x, a.y, a.z) != std::tie(b.x, b.y, b.z)
                   ? std::tie(a.x, a.y, a.z) < std::tie(b.x, b.y, b.z)
                   : &a < &b;
    }

    /// The corners by their positions, so that faces on other points of the same places are cut and
    /// drawn alike, too.
    void add(std::uint32_t index, const Face& face, const CutTriangle& triangle) {
        const FaceCorner* corner[3];
        for (int k = 0; k < 3; ++k) corner[k] = face.q + triangle.corner[k];
        bool turned = false;
        for (const int k : {0, 1, 0}) {
            if (!comesBefore(*corner[k + 1]->p, *corner[k]->p)) continue;
            std::swap(corner[k], corner[k + 1]);
            turned = !turned;
        }
        RasterTriangle added{{}, index & 0x7FFFFFFF, turned ? 1U : 0U};
        TriangleList::Corners its{}, shown{};
        for (int k = 0; k < 3; ++k) {
            added.corner[k] = points(static_cast<std::size_t>(pointOf(mesh, *corner[k])));
            const std::uint32_t normal = numberOf(mesh.normals, mesh.nd, corner[k]->d);
            its.corner[k] = normal == TriangleList::none ? normal : normals(normal);
            shown.corner[k] = numberOf(mesh.texcoords, mesh.nt, corner[k]->t);
        }
        list.triangles.push_back(added);
        list.normals.push_back(its);
        if (withTexCoords) list.texCoords.push_back(shown);
    }

    template <typename T>
    static std::uint32_t numberOf(const T* array, std::int32_t count, const T* element) {
        const std::size_t place = offset(array, element) / sizeof(T);
        return place < static_cast<std::size_t>(count) ? static_cast<std::uint32_t>(place)
                                                       : TriangleList::none;
    }

    const Mesh& mesh;
    TriangleList& list;
    bool withTexCoords;
    Renumbering points, normals;
    PolygonCutter cutter;
    std::vector<Vec3> places;
};

} // namespace

void listTriangles(const Mesh& mesh, TriangleList& list, bool withTexCoords) {
    const std::vector<Placed> faces = placedFaces(mesh);
    std::size_t count = 0;
    for (const Placed& entry : faces) {
        count += static_cast<std::size_t>(mesh.faces[entry.face].n - 2);
    }
    list.hasPolygons = count > faces.size();
    list.triangles.clear();
    list.normals.clear();
    list.texCoords = {};
    list.triangles.reserve(count);
    list.normals.reserve(count);
    list.texCoords.reserve(withTexCoords ? count : 0);
    Lister lister(mesh, list, withTexCoords);
    for (std::size_t i = 0; i < faces.size(); ++i) {
        // In a mesh of no order the next faces are far apart; they are called for in time.
        if (i + 16 < faces.size()) __builtin_prefetch(&mesh.faces[faces[i + 16].face]);
        if (i + 8 < faces.size()) __builtin_prefetch(mesh.faces[faces[i + 8].face].q);
        lister.add(faces[i].face);
    }
}

std::uint64_t printOfFaces(const Mesh& mesh) {
    std::atomic<std::uint64_t> sum =
        printOf(static_cast<std::uint64_t>(mesh.np), static_cast<std::uint64_t>(mesh.nd));
    inPieces(static_cast<std::size_t>(mesh.nf), pieceSize, [&](std::size_t from, std::size_t to) {
        std::uint64_t print = 0;
        for (std::size_t i = from; i < to; ++i) {
            const Face& face = mesh.faces[i];
            if (!isDrawn(mesh, face)) continue;
            std::uint64_t place = i;
            for (const FaceCorner& corner : corners(face)) {
                place = printOf(place, offset(mesh.points, corner.p))
                        + printOf(place + 1, offset(mesh.normals, corner.d))
                        + printOf(place + 2, offset(mesh.texcoords, corner.t));
            }
            print += printOf(i, place);
        }
        sum += print;
    });
    return sum;
}

} // namespace polyfab
