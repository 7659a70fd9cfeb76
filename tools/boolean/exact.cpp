// SPDX-License-Identifier: GPL-3.0-or-later
// The library's lazy numbers carry an interval and compute exactly only when that does not decide.
#include "tools/boolean/exact.h"

#include <CGAL/Constrained_Delaunay_triangulation_2.h>
#include <CGAL/Exact_predicates_exact_constructions_kernel.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Triangulation_vertex_base_with_info_2.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <map>

namespace polyfab::boolean {
namespace {

using Given = CGAL::Exact_predicates_inexact_constructions_kernel; ///< of positions as they are
using Made = CGAL::Exact_predicates_exact_constructions_kernel;
using Point = Made::Point_3;
using FlatPoint = Made::Point_2;
using Corner = CGAL::Triangulation_vertex_base_with_info_2<std::int32_t, Made>;
using Cell = CGAL::Constrained_triangulation_face_base_2<Made>;
using Triangulation = CGAL::Constrained_Delaunay_triangulation_2<
    Made, CGAL::Triangulation_data_structure_2<Corner, Cell>,
    CGAL::No_constraint_intersection_requiring_constructions_tag>;

Given::Point_3 given(const Vec3& v) { return {v.x, v.y, v.z}; }

Given::Point_2 givenFlat(const Vec3& v, int axis) {
    return axis == 0   ? Given::Point_2{v.y, v.z}
           : axis == 1 ? Given::Point_2{v.z, v.x}
                       : Given::Point_2{v.x, v.y};
}

FlatPoint flatten(const Point& p, int axis) {
    return axis == 0   ? FlatPoint{p.y(), p.z()}
           : axis == 1 ? FlatPoint{p.z(), p.x()}
                       : FlatPoint{p.x(), p.y()};
}

/// How far along ab, in parts of it, the line cd crosses it.
Made::FT partOfCrossing(const FlatPoint& a, const FlatPoint& b, const FlatPoint& c,
                        const FlatPoint& d) {
    const Made::Vector_2 way = d - c;
    return CGAL::determinant(c - a, way) / CGAL::determinant(b - a, way);
}

/// The nearest double; the library's own is that towards zero.
template <typename Number>
double nearest(const Number& exact) {
    const double towardsZero = CGAL::to_double(exact);
    const double away = std::nextafter(towardsZero, exact < 0 ? -std::numeric_limits<double>::max()
                                                              : std::numeric_limits<double>::max());
    const Number below = CGAL::abs(exact - Number(towardsZero));
    return below <= CGAL::abs(Number(away) - exact) ? towardsZero : away;
}

std::size_t place(std::int32_t number) { return static_cast<std::size_t>(number); }

} // namespace

int side(const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& d) {
    return CGAL::orientation(given(a), given(b), given(c), given(d));
}

int turn(const Vec3& a, const Vec3& b, const Vec3& c, int axis) {
    return CGAL::orientation(givenFlat(a, axis), givenFlat(b, axis), givenFlat(c, axis));
}

struct ExactPoints::Numbers {
    struct Less {
        bool operator()(const Point& a, const Point& b) const {
            return CGAL::compare_xyz(a, b) == CGAL::SMALLER;
        }
    };

    std::span<const Vec3> input;
    std::map<std::int32_t, Point> entered; ///< of the input
    std::vector<Point> made;
    std::map<Point, std::int32_t, Less> known;

    [[nodiscard]] Point at(std::int32_t id) const {
        if (place(id) >= input.size()) return made[place(id) - input.size()];
        const auto found = entered.find(id);
        if (found != entered.end()) return found->second;
        const Vec3& v = input[place(id)];
        return {v.x, v.y, v.z};
    }
    std::int32_t add(const Point& point) {
        const auto next = static_cast<std::int32_t>(input.size() + made.size());
        const auto [entry, isNew] = known.try_emplace(point, next);
        if (isNew) made.push_back(point);
        return entry->second;
    }
};

ExactPoints::ExactPoints(std::span<const Vec3> input) : numbers(std::make_unique<Numbers>()) {
    numbers->input = input;
}
ExactPoints::~ExactPoints() = default;

void ExactPoints::enter(std::int32_t id) {
    const auto [entry, isNew] = numbers->entered.try_emplace(id, numbers->at(id));
    if (isNew) numbers->known.try_emplace(entry->second, id);
}

std::int32_t ExactPoints::meet(std::int32_t from, std::int32_t to, const Ids& plane) {
    const auto at = [&](std::int32_t id) { return numbers->at(id); };
    return numbers->add(Made::Construct_plane_line_intersection_point_3()(
        at(plane[0]), at(plane[1]), at(plane[2]), at(from), at(to)));
}

std::int32_t ExactPoints::cross(const IdPair& line, const IdPair& other, int axis) {
    const Point from = numbers->at(line[0]), to = numbers->at(line[1]);
    const auto flat = [&](std::int32_t id) { return flatten(numbers->at(id), axis); };
    const Made::FT part =
        partOfCrossing(flatten(from, axis), flatten(to, axis), flat(other[0]), flat(other[1]));
    return numbers->add(from + part * (to - from));
}

bool ExactPoints::isBefore(std::int32_t a, std::int32_t b) const {
    return Numbers::Less()(numbers->at(a), numbers->at(b));
}

bool ExactPoints::areInLine(std::int32_t a, std::int32_t b, std::int32_t c) const {
    return CGAL::collinear(numbers->at(a), numbers->at(b), numbers->at(c));
}

Vec3 ExactPoints::rounded(std::int32_t id) const {
    const Point point = numbers->at(id);
    const auto& exact = CGAL::exact(point);
    return {nearest(exact.x()), nearest(exact.y()), nearest(exact.z())};
}

std::int32_t ExactPoints::count() const {
    return static_cast<std::int32_t>(numbers->input.size() + numbers->made.size());
}

struct FlatView::Flat {
    ExactPoints::Numbers& numbers;
    int axis;
    std::vector<std::int32_t> ids{};
    std::vector<Point> solid{};
    std::vector<FlatPoint> points{};
    std::map<std::int32_t, std::int32_t> numberOf{};

    const FlatPoint& at(std::int32_t point) const { return points[place(point)]; }
};

FlatView::FlatView(ExactPoints& owner, int axis)
    : flat(std::make_unique<Flat>(Flat{*owner.numbers, axis})) {}
FlatView::~FlatView() = default;

std::int32_t FlatView::add(std::int32_t id) {
    const auto [entry, isNew] = flat->numberOf.try_emplace(id, count());
    if (isNew) {
        flat->ids.push_back(id);
        flat->solid.push_back(flat->numbers.at(id));
        flat->points.push_back(flatten(flat->solid.back(), flat->axis));
    }
    return entry->second;
}

std::int32_t FlatView::idOf(std::int32_t point) const { return flat->ids[place(point)]; }
std::int32_t FlatView::count() const { return static_cast<std::int32_t>(flat->ids.size()); }

int FlatView::turn(std::int32_t a, std::int32_t b, std::int32_t c) const {
    return CGAL::orientation(flat->at(a), flat->at(b), flat->at(c));
}

bool FlatView::isBefore(std::int32_t a, std::int32_t b) const {
    return CGAL::compare_xy(flat->at(a), flat->at(b)) == CGAL::SMALLER;
}

std::int32_t FlatView::crossing(std::int32_t a, std::int32_t b, std::int32_t c, std::int32_t d) {
    const Made::FT part = partOfCrossing(flat->at(a), flat->at(b), flat->at(c), flat->at(d));
    const Point& from = flat->solid[place(a)];
    return add(flat->numbers.add(from + part * (flat->solid[place(b)] - from)));
}

std::array<double, 4> FlatView::bounds(std::int32_t point) const {
    const auto box = flat->at(point).bbox();
    return {box.xmin(), box.xmax(), box.ymin(), box.ymax()};
}

std::vector<Ids> FlatView::triangulate(std::span<const IdPair> segments) const {
    Triangulation all;
    std::vector<Triangulation::Vertex_handle> corners;
    Triangulation::Face_handle near;
    for (std::int32_t i = 0; i < count(); ++i) {
        corners.push_back(all.insert(flat->at(i), near));
        corners.back()->info() = i;
        near = corners.back()->face();
    }
    if (all.dimension() < 2 || all.number_of_vertices() != corners.size()) return {};
    for (const auto& [from, to] : segments)
        all.insert_constraint(corners[place(from)], corners[place(to)]);
    std::vector<Ids> triangles;
    for (const auto& face : all.finite_face_handles()) {
        triangles.push_back(
            {face->vertex(0)->info(), face->vertex(1)->info(), face->vertex(2)->info()});
    }
    return triangles;
}

struct Ray::Start {
    Point at;
    std::array<int, 3> normal; ///< signs of the coordinates of the triangle's normal
};

Ray::Ray(const ExactPoints& points, const Ids& triangle) {
    const auto& numbers = *points.numbers;
    const Point a = numbers.at(triangle[0]), b = numbers.at(triangle[1]),
                c = numbers.at(triangle[2]);
    std::array<int, 3> normal{};
    for (int axis = 0; axis < 3; ++axis) {
        normal[place(axis)] =
            CGAL::orientation(flatten(a, axis), flatten(b, axis), flatten(c, axis));
    }
    start = std::make_unique<Start>(Start{CGAL::centroid(a, b, c), normal});
}
Ray::~Ray() = default;

/// Along x; where the triangle runs along x, the ray passes it a hair towards y, and a hair of that
/// hair towards z.
bool Ray::startsInFront() const {
    for (const int sign : start->normal) {
        if (sign != 0) return sign > 0;
    }
    return true;
}

std::array<Vec3, 2> Ray::bounds() const {
    const auto box = start->at.bbox();
    return {Vec3{box.xmin(), box.ymin(), box.zmin()}, Vec3{box.xmax(), box.ymax(), box.zmax()}};
}

int Ray::leavesThrough(const Vec3& a, const Vec3& b, const Vec3& c) const {
    const int facing = turn(a, b, c, 0);
    if (facing == 0) return 0;
    const FlatPoint at = flatten(start->at, 0);
    const auto passes = [&](const Vec3& from, const Vec3& to) {
        const int sign = CGAL::orientation(FlatPoint{from.y, from.z}, FlatPoint{to.y, to.z}, at);
        if (sign != 0) return sign;
        if (from.z != to.z) return from.z > to.z ? 1 : -1;
        return from.y < to.y ? 1 : -1;
    };
    if (passes(a, b) != facing || passes(b, c) != facing || passes(c, a) != facing) return 0;
    const auto solid = [](const Vec3& v) { return Point{v.x, v.y, v.z}; };
    const int ahead = -CGAL::orientation(solid(a), solid(b), solid(c), start->at);
    return ahead == facing ? facing : 0;
}

} // namespace polyfab::boolean
