// SPDX-License-Identifier: GPL-3.0-or-later
// Which records of the stream are the same, for UniqueTable: it finds these by the namespace.
#pragma once

#include "formats/exchange/import_stream.h"
#include "geometry/vec3.h"
#include "mesh/hash_slots.h"

#include <cstdint>

namespace polyfab {

inline bool operator==(const Vec3& a, const Vec3& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z;
}
inline bool operator==(const StreamTexCoord& a, const StreamTexCoord& b) {
    return a.u == b.u && a.v == b.v;
}
inline std::uint64_t hashOf(const Vec3& v) { return hashOfNumbers(v.x, v.y, v.z); }
inline std::uint64_t hashOf(const StreamTexCoord& t) { return hashOfNumbers(t.u, t.v); }

} // namespace polyfab
