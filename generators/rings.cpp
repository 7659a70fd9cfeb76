// SPDX-License-Identifier: GPL-3.0-or-later
#include "generators/rings.h"

#include "mesh/face_angle.h"

#include <algorithm>
#include <cstddef>

namespace polyfab {
namespace {

Ring addCircle(Shape& shape, const Frame& frame, const Circle& circle,
               const std::vector<Turn>& around) {
    Ring ring;
    if (circle.radius == 0) ring.points.assign(around.size(), shape.addPoint(circle.centre));
    ring.points.reserve(around.size());
    for (std::size_t i = ring.points.size(); i < around.size(); ++i) {
        const Vec3 out = frame.u * around[i].cosine + frame.v * around[i].sine;
        ring.points.push_back(shape.addPoint(circle.centre + out * circle.radius));
    }
    addTexture(shape, ring, circle.v);
    return ring;
}

/// A flat face on the ring, unless that is a single point. Its texture is a disc.
void addLid(Shape& shape, const Ring& ring, const std::vector<Turn>& around, bool up) {
    std::vector<std::int32_t> points = ring.points, places;
    for (const Turn& turn : around) {
        if (!shape.textured || points[0] == points[1]) break;
        places.push_back(static_cast<std::int32_t>(shape.texture.size()));
        shape.texture.push_back({0.5 + 0.5 * turn.cosine, 0.5 + (up ? 0.5 : -0.5) * turn.sine});
    }
    if (!up) {
        std::reverse(points.begin(), points.end());
        std::reverse(places.begin(), places.end());
    }
    shape.addFace(points, places);
}

} // namespace

void addTexture(Shape& shape, Ring& ring, double v) {
    if (!shape.textured) return;
    ring.texture = static_cast<std::int32_t>(shape.texture.size());
    const auto n = static_cast<double>(ring.points.size());
    for (double i = 0; i <= n; ++i) shape.texture.push_back({i / n, v});
}

void joinRings(Shape& shape, const Ring& from, const Ring& to) {
    const std::size_t n = from.points.size();
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t next = i + 1 == n ? 0 : i + 1;
        const std::int32_t points[] = {from.points[i], from.points[next], to.points[next],
                                       to.points[i]};
        const auto place = static_cast<std::int32_t>(i);
        const std::int32_t places[] = {from.texture + place, from.texture + place + 1,
                                       to.texture + place + 1, to.texture + place};
        shape.addFace(points, places);
    }
}

void addLathe(Shape& shape, const Frame& frame, std::span<const Circle> circles,
              const std::vector<Turn>& around) {
    shape.reserve(static_cast<double>(circles.size() * around.size()));
    Ring before = addCircle(shape, frame, circles.front(), around);
    addLid(shape, before, around, false);
    for (const Circle& circle : circles.subspan(1)) {
        Ring ring = addCircle(shape, frame, circle, around);
        joinRings(shape, before, ring);
        before = std::move(ring);
    }
    addLid(shape, before, around, true);
}

void addSphere(Shape& shape, const Vec3& centre, double radius, int around, int up) {
    const Vec3 pole{0, 1, 0};
    std::vector<Circle> circles;
    for (int i = 0; i <= up; ++i) {
        const Turn turn = turnBy(i, 2.0 * up);
        circles.push_back({centre - pole * (radius * turn.cosine), radius * turn.sine,
                           static_cast<double>(i) / up});
    }
    addLathe(shape, frameAlong(pole), circles, turnsOf(around));
}

void addCylinder(Shape& shape, const Vec3& from, const Vec3& to, double radius1, double radius2,
                 int sides) {
    const Circle circles[] = {{from, radius1, 0}, {to, radius2, 1}};
    addLathe(shape, frameAlong(to - from), circles, turnsOf(sides));
}

void addRoundedCylinder(Shape& shape, const Vec3& from, const Vec3& to, double radius, int sides,
                        int rings) {
    const Frame frame = frameAlong(to - from);
    const double quarter = pi / 2 * radius, length = dot(to - from, frame.w);
    const double whole = 2 * quarter + length;
    std::vector<Circle> circles;
    for (int i = 0; i <= rings; ++i) { // the lower cap, from its pole to its rim
        const Turn turn = turnBy(i, 4.0 * rings);
        circles.push_back({from - frame.w * (radius * turn.cosine), radius * turn.sine,
                           quarter * i / rings / whole});
    }
    for (int i = rings; i >= 0; --i) { // the upper one, down to up
        const Turn turn = turnBy(i, 4.0 * rings);
        circles.push_back({to + frame.w * (radius * turn.cosine), radius * turn.sine,
                           1 - quarter * i / rings / whole});
    }
    addLathe(shape, frame, circles, turnsOf(sides));
}

void addTorus(Shape& shape, const Vec3& centre, const Vec3& axis, double radius, double thickness,
              int around, int across) {
    shape.reserve(double(around) * across);
    const Frame frame = frameAlong(axis);
    const std::vector<Turn> cut = turnsOf(across);
    Ring first, before;
    for (int k = 0; k <= around; ++k) {
        Ring ring = first;
        if (k < around) {
            const Turn turn = turnBy(k, around);
            const Vec3 out = frame.u * turn.cosine + frame.v * turn.sine;
            ring.points.clear();
            for (const Turn& at : cut) {
                ring.points.push_back(shape.addPoint(centre + out * (radius + thickness * at.cosine)
                                                     - frame.w * (thickness * at.sine)));
            }
        }
        addTexture(shape, ring, static_cast<double>(k) / around);
        if (k == 0) first = ring;
        if (k > 0) joinRings(shape, before, ring);
        before = std::move(ring);
    }
}

} // namespace polyfab
