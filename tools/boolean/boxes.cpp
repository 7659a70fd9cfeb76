// SPDX-License-Identifier: GPL-3.0-or-later
// The curve is Morton's: the bits of the three coordinates of a box's middle in turn.
#include "tools/boolean/boxes.h"

#include <bit>
#include <cmath>
#include <utility>

namespace polyfab::boolean {
namespace {

float outwards(double value, float way) {
    const auto single = static_cast<float>(value);
    const bool enough = way < 0 ? single <= value : single >= value;
    return enough ? single : std::nextafterf(single, way);
}

/// The lowest 21 bits, each followed by two zeros.
std::uint64_t spread(std::uint64_t bits) {
    constexpr std::pair<int, std::uint64_t> steps[] = {{32, 0x1F00000000FFFFU},
                                                       {16, 0x1F0000FF0000FFU},
                                                       {8, 0x100F00F00F00F00FU},
                                                       {4, 0x10C30C30C30C30C3U},
                                                       {2, 0x1249249249249249U}};
    for (const auto& [shift, mask] : steps) bits = (bits | bits << shift) & mask;
    return bits;
}

std::uint64_t placeOnCurve(const Box& box, const Box& all) {
    std::uint64_t place = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double low = all.low[axis], size = static_cast<double>(all.high[axis]) - low;
        const double middle = 0.5 * box.low[axis] + 0.5 * box.high[axis];
        const double part = size > 0 ? (middle - low) / size : 0;
        if (part > 0)
            place |= spread(static_cast<std::uint64_t>(std::min(part, 1.0) * 0x1FFFFF)) << axis;
    }
    return place;
}

} // namespace

void Box::add(const Vec3& at) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double value = along(at, static_cast<int>(axis));
        low[axis] = std::min(low[axis], outwards(value, -infinite));
        high[axis] = std::max(high[axis], outwards(value, infinite));
    }
}

void Box::add(const Box& other) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
        low[axis] = std::min(low[axis], other.low[axis]);
        high[axis] = std::max(high[axis], other.high[axis]);
    }
}

BoxTree::BoxTree(const std::vector<Box>& boxes) : order(boxes.size()), sorted(boxes.size()) {
    Box all;
    for (const Box& box : boxes) all.add(box);
    std::vector<std::pair<std::uint64_t, std::int32_t>> places(boxes.size());
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        places[i] = {placeOnCurve(boxes[i], all), static_cast<std::int32_t>(i)};
    }
    std::sort(places.begin(), places.end());
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        order[i] = places[i].second;
        sorted[i] = boxes[static_cast<std::size_t>(order[i])];
    }
    firstLeaf = std::bit_ceil(std::max<std::size_t>((boxes.size() + inLeaf - 1) / inLeaf, 1));
    nodes.resize(2 * firstLeaf);
    for (std::size_t i = 0; i < sorted.size(); ++i) nodes[firstLeaf + i / inLeaf].add(sorted[i]);
    for (std::size_t node = firstLeaf - 1; node > 0; --node) {
        nodes[node] = nodes[2 * node];
        nodes[node].add(nodes[2 * node + 1]);
    }
}

} // namespace polyfab::boolean
