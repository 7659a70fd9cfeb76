// SPDX-License-Identifier: GPL-3.0-or-later
// Find-or-add of points by position with a hash table instead of a scan.
#pragma once

#include "mesh/hash_slots.h"
#include "mesh/mesh.h"

#include <cstdint>

namespace polyfab {

/// Gives the same points as Mesh::findOrAddPoint, for as long as nobody else adds, moves or removes
/// any. Takes 8 to 32 bytes a point; std::bad_alloc when there is no memory for them.
class PointIndex {
  public:
    explicit PointIndex(Mesh& mesh);
    /// The lowest point with exactly this world position (-0 equals 0, NaN nothing), or a new one.
    /// -1: no room for a new one.
    int findOrAdd(double x, double y, double z);

  private:
    void enterAll();
    std::int32_t& slotOf(double x, double y, double z);

    Mesh& mesh;
    HashSlots slots; ///< points
};

} // namespace polyfab
