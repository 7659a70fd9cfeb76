// SPDX-License-Identifier: GPL-3.0-or-later
// Find-or-add of points by position with a hash table instead of a scan.
#pragma once

#include "mesh/hash_slots.h"
#include "mesh/mesh.h"

#include <cstddef>
#include <cstdint>

namespace polyfab {

/// Gives the same points as Mesh::findOrAddPoint, for as long as nobody else adds, moves or removes
/// any. Takes 8 to 32 bytes a point; std::bad_alloc when there is no memory for them.
class PointIndex {
  public:
    /// `expected`: points that are likely to be added, for which it has room from the start.
    explicit PointIndex(Mesh& mesh, std::size_t expected = 0);
    /// The lowest point with exactly this world position (-0 equals 0, NaN nothing), or a new one.
    /// -1: no room for a new one.
    int findOrAdd(double x, double y, double z);
    /// To be called some calls of findOrAdd before that for this position, which is then quicker.
    void prepare(double x, double y, double z) const { slots.prepare(hashOfNumbers(x, y, z)); }

  private:
    void enterAll(std::size_t expected);
    std::int32_t& slotOf(double x, double y, double z);

    Mesh& mesh;
    HashSlots slots; ///< points
};

} // namespace polyfab
