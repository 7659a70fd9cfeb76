// SPDX-License-Identifier: GPL-3.0-or-later
// The weights are those of Thürmer and Wüthrich, "Computing vertex normals from polygonal facets",
// 1998.
#include "display/shade_normals.h"

#include "display/edge_list.h"
#include "mesh/face_area.h"
#include "mesh/faces.h"
#include "picture/workers.h"

#include <algorithm>
#include <bitset>
#include <cmath>
#include <numbers>
#include <span>
#include <unordered_map>

namespace polyfab {
namespace {

constexpr std::size_t pieceSize = 1 << 14;
constexpr std::size_t mostAround = 256; ///< triangles around a usual point
/// Directions around the others that are compared with each other: so many cost a few milliseconds.
constexpr std::size_t mostDirections = 1024;
constexpr double cosineWithin = std::numbers::sqrt2 / 2 - 1e-4; ///< normals are packed

PackedNormal packed(const Vec3& normal) {
    const Vec3 n = unit(normal) * PackedNormal::one;
    return {static_cast<std::int16_t>(std::lround(n.x)),
            static_cast<std::int16_t>(std::lround(n.y)),
            static_cast<std::int16_t>(std::lround(n.z))};
}

Vec3 unpacked(const PackedNormal& n) {
    return Vec3{double(n.x), double(n.y), double(n.z)} * (1 / PackedNormal::one);
}

/// The corners of the triangles by their points: corner k of triangle t is number 3 t + k.
struct CornersOfPoints {
    std::vector<std::uint32_t> first; ///< of point i those from first[i] up to first[i + 1]
    std::vector<std::uint32_t> corner;

    explicit CornersOfPoints(const TriangleList& list)
        : first(list.pointOf.size() + 1, 0), corner(3 * list.triangles.size()) {
        for (const RasterTriangle& t : list.triangles) {
            for (const std::uint32_t point : t.corner) ++first[point];
        }
        std::uint32_t sum = 0;
        for (std::uint32_t& entry : first) entry = sum += entry;
        // Filled from the back, each list's end becomes its start.
        for (std::size_t t = list.triangles.size(); t-- > 0;) {
            for (std::size_t k = 3; k-- > 0;) {
                corner[--first[list.triangles[t].corner[k]]] =
                    static_cast<std::uint32_t>(3 * t + k);
            }
        }
    }
    std::span<const std::uint32_t> of(std::size_t point) const {
        return std::span(corner).subspan(first[point], first[point + 1] - first[point]);
    }
};

/// An angle in 16 bits. Its root is kept, so that a millionth of a turn still counts as such.
struct PackedAngle {
    std::uint16_t root = 0;
    explicit operator double() const { return 1.0 * root * root; }
};

PackedAngle packed(double angle) {
    return {static_cast<std::uint16_t>(std::sqrt(angle / std::numbers::pi) * 65535)};
}

/// The angles of the triangles at their corners.
std::vector<PackedAngle> anglesOf(const Mesh& mesh, const TriangleList& list) {
    std::vector<PackedAngle> angles(3 * list.triangles.size());
    inPieces(list.triangles.size(), pieceSize, [&](std::size_t from, std::size_t to) {
        for (std::size_t t = from; t < to; ++t) {
            const auto at = [&](std::size_t k) {
                return worldPosition(mesh.points[list.pointOf[list.triangles[t].corner[k % 3]]]);
            };
            for (std::size_t k = 0; k < 3; ++k) {
                const Vec3 a = unit(at(k + 1) - at(k)), b = unit(at(k + 2) - at(k));
                angles[3 * t + k] = packed(std::acos(std::clamp(dot(a, b), -1.0, 1.0)));
            }
        }
    });
    return angles;
}

/// Gives the corners around one point their normals.
class Blender {
  public:
    Blender(TriangleList& blended, ShadeNormals& into, const std::vector<PackedAngle>& weights)
        : list(blended), normals(into), angles(weights) {}

    void blend(std::span<const std::uint32_t> around) {
        if (around.size() > mostAround) return blendMany(around);
        faces.clear();
        for (const std::uint32_t corner : around) {
            faces.push_back(unpacked(normals.flat[corner / 3]));
        }
        found.clear();
        for (std::size_t i = 0; i < around.size(); ++i) {
            if (placeOf(around[i]) == TriangleList::none) blendOne(around, i);
        }
    }

  private:
    using Near = std::bitset<mostAround>; ///< the faces that lie within 45 degrees
    struct Found {
        Near near;
        std::uint32_t place;
    };

    std::uint32_t& placeOf(std::uint32_t corner) {
        return list.normals[corner / 3].corner[corner % 3];
    }
    void give(std::uint32_t corner, const PackedNormal& normal) {
        if (placeOf(corner) != TriangleList::none) return;
        placeOf(corner) = static_cast<std::uint32_t>(normals.smooth.size());
        normals.smooth.push_back(normal);
    }

    void blendOne(std::span<const std::uint32_t> around, std::size_t i) {
        Near near;
        for (std::size_t j = 0; j < around.size(); ++j) {
            near[j] = dot(faces[i], faces[j]) >= cosineWithin;
        }
        for (const Found& other : found) {
            if (other.near == near) return void(placeOf(around[i]) = other.place);
        }
        Vec3 sum;
        for (std::size_t j = 0; j < around.size(); ++j) {
            if (near[j]) sum += faces[j] * double(angles[around[j]]);
        }
        found.push_back({near, static_cast<std::uint32_t>(normals.smooth.size())});
        give(around[i], packed(isZero(sum) ? faces[i] : sum));
    }

    /// Triangles that face exactly the same count as one, and where there are too many others those
    /// that face about the same.
    void blendMany(std::span<const std::uint32_t> around) {
        int shift = 0;
        while (!gather(around, shift)) ++shift;
        for (Direction& own : directions) {
            if (!isZero(own.sum)) own.normal = unit(own.sum);
        }
        const std::size_t first = normals.smooth.size();
        for (const Direction& own : directions) {
            Vec3 sum;
            for (const Direction& other : directions) {
                if (dot(own.normal, other.normal) >= cosineWithin) sum += other.sum;
            }
            normals.smooth.push_back(packed(isZero(sum) ? own.normal : sum));
        }
        for (const std::uint32_t corner : around) {
            if (placeOf(corner) != TriangleList::none) continue;
            const std::size_t number = directionOf.at(cellOf(normals.flat[corner / 3], shift));
            placeOf(corner) = static_cast<std::uint32_t>(first + number);
        }
    }

    /// The cube of 2^shift steps a side that the normal ends in.
    static std::uint64_t cellOf(const PackedNormal& n, int shift) {
        std::uint64_t cell = 0;
        for (const int part : {int{n.x}, int{n.y}, int{n.z}}) {
            cell = cell << 16 | static_cast<std::uint64_t>((part + 0x8000) >> shift);
        }
        return cell;
    }

    /// Gathers the directions by such cubes. False when there are too many.
    bool gather(std::span<const std::uint32_t> around, int shift) {
        directionOf.clear();
        directions.clear();
        for (const std::uint32_t corner : around) {
            const PackedNormal& normal = normals.flat[corner / 3];
            const auto [entry, isNew] =
                directionOf.try_emplace(cellOf(normal, shift), directions.size());
            if (isNew && directions.size() == mostDirections) return false;
            if (isNew) directions.push_back({unpacked(normal), {}});
            directions[entry->second].sum += unpacked(normal) * double(angles[corner]);
        }
        return true;
    }

    struct Direction {
        Vec3 normal, sum; ///< the sum is that of the normals by their angles
    };

    TriangleList& list;
    ShadeNormals& normals;
    const std::vector<PackedAngle>& angles;
    std::unordered_map<std::uint64_t, std::size_t> directionOf;
    std::vector<Direction> directions;
    std::vector<Vec3> faces;
    std::vector<Found> found;
};

/// The normals of the mesh; corners without one, or with one of no direction, have none. Whether
/// there is no such corner.
bool takeOwnNormals(const Mesh& mesh, TriangleList& list, ShadeNormals& normals) {
    normals.smooth.clear();
    normals.smooth.reserve(list.normalOf.size());
    for (const std::uint32_t index : list.normalOf) {
        const Normal& normal = mesh.normals[index];
        normals.smooth.push_back(packed({normal.x, normal.y, normal.z}));
    }
    const auto isZero = [&](std::uint32_t place) {
        const PackedNormal& n = normals.smooth[place];
        return n.x == 0 && n.y == 0 && n.z == 0;
    };
    bool all = true;
    for (TriangleList::Corners& its : list.normals) {
        for (std::uint32_t& place : its.corner) {
            const bool isOwn = place < normals.smooth.size();
            if (isOwn && !isZero(place)) continue;
            normals.lostSome |= isOwn;
            place = TriangleList::none;
            all = false;
        }
    }
    return all;
}

} // namespace

void findFlatNormals(const Mesh& mesh, const TriangleList& list, ShadeNormals& normals) {
    // A face is worked out once, however many triangles it has.
    std::vector<PackedNormal> ofFace(static_cast<std::size_t>(mesh.nf));
    inPieces(ofFace.size(), pieceSize, [&](std::size_t from, std::size_t to) {
        for (std::size_t i = from; i < to; ++i) {
            const Face& face = mesh.faces[i];
            ofFace[i] =
                face.n >= 3 && isSound(mesh, face) ? packed(scaledArea(face)) : PackedNormal{};
        }
    });
    normals.flat.resize(list.triangles.size());
    inPieces(list.triangles.size(), pieceSize, [&](std::size_t from, std::size_t to) {
        for (std::size_t t = from; t < to; ++t) normals.flat[t] = ofFace[list.triangles[t].face];
    });
}

void findSmoothNormals(const Mesh& mesh, TriangleList& list, ShadeNormals& normals) {
    if (takeOwnNormals(mesh, list, normals)) return;
    const std::vector<PackedAngle> angles = anglesOf(mesh, list);
    const CornersOfPoints corners(list);
    Blender blender(list, normals, angles);
    for (std::size_t i = 0; i < list.pointOf.size(); ++i) blender.blend(corners.of(i));
}

} // namespace polyfab
