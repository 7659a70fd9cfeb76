// SPDX-License-Identifier: GPL-3.0-or-later
// Sparks: thin tetrahedra that fly from a place into a cone, strewn as far as the cone's end. The
// random numbers are those of splitmix64 (Steele, Lea and Flood, "Fast splittable pseudorandom
// number generators", 2014), so that a seed means the same sparks everywhere.
#include "generators/maker.h"
#include "generators/rings.h"

#include <array>
#include <cstdint>

namespace polyfab {
namespace {

enum { from, towards = 3, number = 6, spread, length, width, seed };
constexpr Parameter rows[] = {coordinate("from x", 0, 0),
                              coordinate("from y", 0, 1),
                              coordinate("from z", 0, 2),
                              coordinate("towards x", 1, 0),
                              coordinate("towards y", 1, 1),
                              coordinate("towards z", 1, 2),
                              count("number", 100, 1, mostFaces),
                              {"spread in degrees", 20, 0, 180},
                              size("length", 0.2),
                              size("width", 0.02),
                              count("seed", 1, 0, 4294967295)};

class Random {
  public:
    explicit Random(double begin) : state(static_cast<std::uint64_t>(begin)) {}
    /// From 0 up to but without 1.
    double next() {
        state += 0x9E3779B97F4A7C15U;
        std::uint64_t z = state;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
        return static_cast<double>((z ^ (z >> 31)) >> 11) * 0x1p-53;
    }

  private:
    std::uint64_t state;
};

void addSpark(Shape& shape, const Vec3& start, const Vec3& direction, double length, double width) {
    static const std::vector<Turn> thirds = turnsOf(3);
    const Frame frame = frameAlong(direction);
    std::array<std::int32_t, 4> p{};
    for (std::size_t i = 0; i < 3; ++i) {
        const Vec3 out = frame.u * thirds[i].cosine + frame.v * thirds[i].sine;
        p[i] = shape.addPoint(start + out * (width / 2));
    }
    p[3] = shape.addPoint(start + frame.w * length);
    for (const auto& [a, b, c] : {std::array{0, 2, 1}, {0, 1, 3}, {1, 2, 3}, {2, 0, 3}}) {
        const std::int32_t face[] = {p[static_cast<std::size_t>(a)], p[static_cast<std::size_t>(b)],
                                     p[static_cast<std::size_t>(c)]};
        shape.addFace(face);
    }
}

double faces(const Mesh&, const Answers& answers) { return 4 * answers[number]; }

const char* build(const Mesh&, const Answers& answers, Shape& shape) {
    const Vec3 source = answers.position(from);
    const Vec3 way = answers.position(towards) - source;
    if (isZero(way)) return "the cone has no direction: it ends where it begins";
    shape.reserve(4 * answers[number]);
    const Frame cone = frameAlong(way);
    const double reach = dot(way, cone.w), least = turnBy(answers[spread], 360).cosine;
    Random random(answers[seed]);
    for (int i = 0; i < answers[number]; ++i) {
        // Evenly over the part of a sphere that the cone cuts out.
        const double along = 1 - random.next() * (1 - least);
        const double aside = std::sqrt(std::max(0.0, 1 - along * along));
        const Turn turn = turnBy(random.next(), 1);
        const Vec3 direction = cone.w * along + (cone.u * turn.cosine + cone.v * turn.sine) * aside;
        addSpark(shape, source + direction * (reach * random.next()), direction, answers[length],
                 answers[width]);
    }
    return nullptr;
}

} // namespace

const Maker sparksMaker = {"SPARKS", "shower of sparks", rows, false, false, faces, build};

} // namespace polyfab
