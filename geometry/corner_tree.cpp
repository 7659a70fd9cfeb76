// SPDX-License-Identifier: GPL-3.0-or-later
// A tree of boxes, each halved across its longer side (Bentley, "Multidimensional binary search
// trees used for associative searching", 1975).
#include "geometry/corner_tree.h"

#include <algorithm>

namespace polyfab {
namespace {

constexpr std::int32_t leafSize = 8;

/// Whether all of the box lies to the right of the line from a to b: then its corner farthest to
/// the left does.
bool isRightOf(const Vec2& a, const Vec2& b, const Bounds& box) {
    const Vec2 corner{b.y > a.y ? box.left : box.right, b.x > a.x ? box.high : box.low};
    return orientation(a, b, corner) < 0;
}

/// To the middle of the box.
double squaredWay(const Vec2& from, const Bounds& box) {
    const double x = (box.left + box.right) / 2 - from.x, y = (box.low + box.high) / 2 - from.y;
    return x * x + y * y;
}

bool areApart(const Bounds& a, const Bounds& b) {
    return a.left > b.right || b.left > a.right || a.low > b.high || b.low > a.high;
}

} // namespace

/// Many corners may stand where one of the triangle's does.
bool CornerTree::Triangle::misses(const Bounds& other) const {
    const Vec2 low{other.left, other.low}, high{other.right, other.high};
    return areApart(box, other) || isRightOf(a, b, other) || isRightOf(b, c, other)
           || isRightOf(c, a, other) || (low == high && isCorner(low));
}

bool CornerTree::Triangle::holds(const Vec2& p) const {
    return !isCorner(p) && orientation(a, b, p) > 0 && orientation(b, c, p) > 0
           && orientation(c, a, p) >= 0;
}

void Bounds::add(const Vec2& p) {
    left = std::min(left, p.x);
    right = std::max(right, p.x);
    low = std::min(low, p.y);
    high = std::max(high, p.y);
}

CornerTree::CornerTree(std::span<const Vec2> corners)
    : polygon(corners), order(corners.size()), leafOf(corners.size()), isHeld(corners.size(), 0) {
    const auto n = static_cast<std::int32_t>(corners.size());
    for (std::int32_t i = 0; i < n; ++i) order[static_cast<std::size_t>(i)] = i;
    std::size_t leaves = 1;
    while (static_cast<std::int64_t>(leaves) * leafSize < n) leaves *= 2;
    nodes.resize(2 * leaves);
    build(1, 0, n);
}

void CornerTree::build(std::size_t node, std::int32_t first, std::int32_t end) {
    Node& its = nodes[node];
    its.first = first;
    its.end = end;
    const auto begin = order.begin();
    for (auto i = begin + first; i < begin + end; ++i) its.box.add(at(*i));
    if (2 * node >= nodes.size()) {
        for (auto i = begin + first; i < begin + end; ++i) {
            leafOf[static_cast<std::size_t>(*i)] = node;
        }
        return;
    }
    const bool wide = its.box.right - its.box.left > its.box.high - its.box.low;
    const std::int32_t middle = first + (end - first) / 2;
    std::nth_element(begin + first, begin + middle, begin + end,
                     [&](std::int32_t a, std::int32_t b) {
                         return wide ? at(a).x < at(b).x : at(a).y < at(b).y;
                     });
    build(2 * node, first, middle);
    build(2 * node + 1, middle, end);
}

void CornerTree::count(std::int32_t corner, int change) {
    isHeld[static_cast<std::size_t>(corner)] = change > 0 ? 1 : 0;
    for (std::size_t node = leafOf[static_cast<std::size_t>(corner)]; node > 0; node /= 2) {
        nodes[node].held += change;
    }
}

void CornerTree::add(std::int32_t corner) { count(corner, 1); }
void CornerTree::remove(std::int32_t corner) { count(corner, -1); }

/// First where `b` is: what blocks an ear near its tip mostly stays the longest.
std::int32_t CornerTree::findIn(std::size_t node, const Triangle& triangle,
                                std::int64_t& looks) const {
    const Node& its = nodes[node];
    ++looks;
    if (its.held == 0 || triangle.misses(its.box)) return -1;
    if (2 * node < nodes.size()) {
        const bool swapped = squaredWay(triangle.b, nodes[2 * node + 1].box)
                             < squaredWay(triangle.b, nodes[2 * node].box);
        const std::int32_t found = findIn(2 * node + (swapped ? 1 : 0), triangle, looks);
        return found >= 0 ? found : findIn(2 * node + (swapped ? 0 : 1), triangle, looks);
    }
    const auto end = order.begin() + its.end;
    const auto found = std::find_if(order.begin() + its.first, end, [&](std::int32_t corner) {
        return isHeld[static_cast<std::size_t>(corner)] != 0 && triangle.holds(at(corner));
    });
    return found != end ? *found : -1;
}

std::int32_t CornerTree::findIn(const Vec2& a, const Vec2& b, const Vec2& c,
                                std::int64_t& looks) const {
    Triangle triangle{a, b, c, {}};
    for (const Vec2* p : {&a, &b, &c}) triangle.box.add(*p);
    return findIn(1, triangle, looks);
}

} // namespace polyfab
