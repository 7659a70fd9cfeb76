// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/face_angle.h"

#include "tools/vectors.h"

#include <algorithm>
#include <cmath>

namespace polyfab {
namespace {

const double pi = 4 * std::atan(1.0);

Vec3 place(const Face& face, int corner) { return worldPosition(*face.q[corner % face.n].p); }

Vec3 centroid(const Face& face) {
    Vec3 sum;
    for (int k = 0; k < face.n; ++k) sum += place(face, k);
    return {sum.x / face.n, sum.y / face.n, sum.z / face.n};
}

} // namespace

Vec3 faceNormal(const Face& face) {
    const Vec3 first = place(face, 0);
    if (face.n == 3) return unitCross(place(face, 1) - first, place(face, 2) - first);
    const Vec3 middle = centroid(face);
    Vec3 sum;
    for (int k = 0; k < face.n; ++k) {
        const Vec3 here = place(face, k);
        sum += unitCross(place(face, k + 1) - here, middle - here);
    }
    return unit(sum);
}

double angleBetween(const Vec3& normal1, const Vec3& normal2) {
    if (isZero(normal1) || isZero(normal2)) return 0;
    const Vec3 third = normal1 - normal2;
    const double a = dot(normal1, normal1), b = dot(normal2, normal2), c = dot(third, third);
    const double cosine = (a + b - c) / (2 * std::sqrt(a) * std::sqrt(b));
    return std::acos(std::clamp(cosine, -1.0, 1.0)) * 180 / pi;
}

} // namespace polyfab
