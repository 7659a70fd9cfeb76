// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/group_order.h"

#include "mesh/faces.h"

#include <algorithm>

namespace polyfab {

void moveGroup(Mesh& mesh, int from, int to) {
    Group* const groups = mesh.groups;
    if (from < to) {
        std::rotate(groups + from, groups + from + 1, groups + to + 1);
    } else {
        std::rotate(groups + to, groups + from, groups + from + 1);
    }
    const auto [low, high] = std::minmax(from, to);
    const int shift = from < to ? -1 : 1;
    for (Face& face : liveFaces(mesh)) {
        if (face.g < low || face.g > high) continue;
        face.g = static_cast<std::int16_t>(face.g == from ? to : face.g + shift);
    }
    mesh.changed = 1;
}

} // namespace polyfab
