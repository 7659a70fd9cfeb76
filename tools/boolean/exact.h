// SPDX-License-Identifier: GPL-3.0-or-later
// Decisions on positions that are exact, and points where lines and planes meet that are kept
// exactly until they are rounded once at the end. All that is known of the library that does the
// arithmetic is in the file beside this one.
#pragma once

#include "geometry/vec3.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace polyfab::boolean {

using Ids = std::array<std::int32_t, 3>;
using IdPair = std::array<std::int32_t, 2>;

/// The sign of where d lies: 1 on the side from which a, b, c run anticlockwise, 0 in their plane.
[[nodiscard]] int side(const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& d);

/// The sign of the way a, b, c turn, seen along this axis: 1 anticlockwise, 0 in a line.
[[nodiscard]] int turn(const Vec3& a, const Vec3& b, const Vec3& c, int axis);

/// Points by number: those of the input first, then those that were made. No two of those that
/// were entered or made are at one place. Everything may throw what the library throws, all of it
/// std::exception.
class ExactPoints {
  public:
    explicit ExactPoints(std::span<const Vec3> input);
    ~ExactPoints();
    ExactPoints(const ExactPoints&) = delete;
    ExactPoints& operator=(const ExactPoints&) = delete;

    /// Makes a point of the input known, so that one that is made at its place is found to be it.
    void enter(std::int32_t id);
    /// Where the line through two points of the input meets the plane of three others.
    std::int32_t meet(std::int32_t from, std::int32_t to, const Ids& plane);
    /// Where two lines of one plane cross, each through two points of the input, seen along an axis
    /// to which the plane is not parallel.
    std::int32_t cross(const IdPair& line, const IdPair& other, int axis);
    /// Orders the points of a line along it.
    [[nodiscard]] bool isBefore(std::int32_t a, std::int32_t b) const;
    [[nodiscard]] bool areInLine(std::int32_t a, std::int32_t b, std::int32_t c) const;
    /// The nearest position of doubles.
    [[nodiscard]] Vec3 rounded(std::int32_t id) const;
    /// How many there are, with the input.
    [[nodiscard]] std::int32_t count() const;

  private:
    friend class FlatView;
    friend class Ray;
    struct Numbers;
    std::unique_ptr<Numbers> numbers;
};

/// Points of one plane seen along an axis to which it is not parallel, by numbers of their own.
class FlatView {
  public:
    FlatView(ExactPoints& owner, int axis);
    ~FlatView();
    FlatView(const FlatView&) = delete;
    FlatView& operator=(const FlatView&) = delete;

    /// The number here of this point, which is added if it is new.
    std::int32_t add(std::int32_t id);
    [[nodiscard]] std::int32_t idOf(std::int32_t point) const;
    [[nodiscard]] std::int32_t count() const;
    [[nodiscard]] int turn(std::int32_t a, std::int32_t b, std::int32_t c) const;
    [[nodiscard]] bool isBefore(std::int32_t a, std::int32_t b) const;
    /// Where the lines ab and cd, which are not parallel, cross.
    std::int32_t crossing(std::int32_t a, std::int32_t b, std::int32_t c, std::int32_t d);
    /// Bounds of where the point is: least and most across, least and most up.
    [[nodiscard]] std::array<double, 4> bounds(std::int32_t point) const;
    /// Triangles, anticlockwise here, that fill the convex hull of all points and have the
    /// segments, none of which crosses another or passes a point, among their sides. None when all
    /// points lie in a line.
    [[nodiscard]] std::vector<Ids> triangulate(std::span<const IdPair> segments) const;

  private:
    struct Flat;
    std::unique_ptr<Flat> flat;
};

/// The way from the middle of a triangle to infinity along x.
class Ray {
  public:
    Ray(const ExactPoints& points, const Ids& triangle);
    ~Ray();
    Ray(const Ray&) = delete;
    Ray& operator=(const Ray&) = delete;

    /// Whether it starts on the side from which the triangle runs anticlockwise.
    [[nodiscard]] bool startsInFront() const;
    /// Bounds of the start.
    [[nodiscard]] std::array<Vec3, 2> bounds() const;
    /// 1 when it leaves through this triangle of the input by the side from which that runs
    /// anticlockwise, -1 when by the other, 0 when it misses it. The start must not be on it. A way
    /// that touches corners and sides passes them all on the same side.
    [[nodiscard]] int leavesThrough(const Vec3& a, const Vec3& b, const Vec3& c) const;

  private:
    struct Start;
    std::unique_ptr<Start> start;
};

} // namespace polyfab::boolean
