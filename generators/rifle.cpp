// SPDX-License-Identifier: GPL-3.0-or-later
// An alien rifle of closed pieces. It is drawn up one unit long, from the butt at the origin to the
// muzzle at x = 1, with y up, and then put between the two ends.
#include "generators/maker.h"
#include "generators/rings.h"

#include <array>

namespace polyfab {
namespace {

enum { butt, muzzle = 3 };
constexpr Parameter rows[] = {coordinate("butt x", 0, 0),   coordinate("butt y", 0, 1),
                              coordinate("butt z", 0, 2),   coordinate("muzzle x", 1, 0),
                              coordinate("muzzle y", 1, 1), coordinate("muzzle z", 1, 2)};

void begin(Shape& shape, const char* group, const char* material, std::uint32_t color) {
    shape.pieces.push_back({static_cast<std::int32_t>(shape.ends.size()), group, material, color});
}

/// A surface around a line along x: pairs of x and radius.
template <std::size_t n>
void addTurned(Shape& shape, double y, const double (&outline)[n][2], int sides) {
    std::array<Circle, n> circles;
    for (std::size_t i = 0; i < n; ++i) circles[i] = {{outline[i][0], y, 0}, outline[i][1], 0};
    addLathe(shape, frameAlong({1, 0, 0}), circles, turnsOf(sides));
}

void addBody(Shape& shape) {
    begin(shape, nullptr, nullptr, 0);
    addTurned(shape, 0,
              {{0.27, 0},
               {0.28, 0.022},
               {0.31, 0.034},
               {0.36, 0.040},
               {0.42, 0.043},
               {0.47, 0.040},
               {0.51, 0.032},
               {0.54, 0.036},
               {0.58, 0.044},
               {0.61, 0.046},
               {0.635, 0.040},
               {0.65, 0.026},
               {0.66, 0}},
              24);
}

void addStock(Shape& shape) {
    begin(shape, "rifle stock", "rifle bone", 0xB8A888);
    addTurned(shape, -0.015,
              {{0, 0.030},
               {0.012, 0.046},
               {0.03, 0.048},
               {0.06, 0.036},
               {0.12, 0.020},
               {0.18, 0.017},
               {0.24, 0.024},
               {0.29, 0.022},
               {0.31, 0}},
              20);
    addRoundedCylinder(shape, {0.335, -0.05, 0}, {0.305, -0.15, 0}, 0.017, 14, 4);
    addTorus(shape, {0.32, -0.10, 0}, {0.3, 1, 0}, 0.017, 0.004, 16, 8);
    for (const double lean : {-0.5, 0.5}) { // two ribs from the butt to the body
        addRoundedCylinder(shape, {0.03, -0.045, 0.02 * lean}, {0.29, 0.02, 0.05 * lean}, 0.006, 8,
                           3);
    }
}

void addBarrel(Shape& shape) {
    begin(shape, "rifle barrel", "rifle steel", 0x5A6672);
    addTurned(shape, 0,
              {{0.645, 0.020},
               {0.70, 0.015},
               {0.88, 0.011},
               {0.90, 0.016},
               {0.93, 0.030},
               {0.935, 0.030},
               {0.91, 0.006}},
              20);
    for (const Turn& turn : turnsOf(3)) { // prongs that close in on the muzzle
        const Vec3 out{0, turn.cosine, turn.sine};
        addCylinder(shape, Vec3{0.90, 0, 0} + out * 0.020, Vec3{0.96, 0, 0} + out * 0.034, 0.006,
                    0.0045, 8);
        addCylinder(shape, Vec3{0.955, 0, 0} + out * 0.033, Vec3{1, 0, 0} + out * 0.012, 0.006, 0,
                    8);
    }
    // A trigger and its guard.
    addCylinder(shape, {0.375, -0.04, 0}, {0.365, -0.085, 0}, 0.006, 0.002, 8);
    addTorus(shape, {0.378, -0.07, 0}, {0, 0, 1}, 0.036, 0.004, 24, 8);
}

void addCoils(Shape& shape) {
    begin(shape, "rifle coils", "rifle copper", 0xB5652A);
    for (int i = 0; i < 7; ++i) {
        addTorus(shape, {0.69 + 0.028 * i, 0, 0}, {1, 0, 0}, 0.034 - 0.0024 * i, 0.0055, 24, 8);
    }
    for (const double side : {-1.0, 1.0}) { // rails that hold the coils
        addRoundedCylinder(shape, {0.64, 0, 0.036 * side}, {0.875, 0, 0.019 * side}, 0.004, 8, 3);
    }
}

void addGlow(Shape& shape) {
    begin(shape, "rifle glow", "rifle plasma", 0x37D67A);
    addSphere(shape, {0.955, 0, 0}, 0.012, 16, 8); // the charge between the prongs
    addSphere(shape, {0.47, 0.078, 0}, 0.034, 24, 12);
    for (const double at : {0.35, 0.385, 0.42}) addSphere(shape, {at, 0.0, 0.042}, 0.007, 12, 6);
    for (const double at : {0.35, 0.385, 0.42}) addSphere(shape, {at, 0.0, -0.042}, 0.007, 12, 6);
}

void addSight(Shape& shape) {
    begin(shape, "rifle sight", "rifle steel", 0x5A6672);
    addTorus(shape, {0.47, 0.078, 0}, {1, 0, 0}, 0.036, 0.005, 24, 8);
    addTorus(shape, {0.47, 0.078, 0}, {0, 1, 0}, 0.039, 0.004, 24, 8);
    addCylinder(shape, {0.47, 0.035, 0}, {0.47, 0.05, 0}, 0.02, 0.012, 16);
    addTurned(shape, 0.075,
              {{0.30, 0.014}, {0.32, 0.018}, {0.37, 0.011}, {0.425, 0.011}, {0.43, 0.0}}, 16);
    addCylinder(shape, {0.34, 0.03, 0}, {0.34, 0.066, 0}, 0.006, 0.006, 8);
    addCylinder(shape, {0.40, 0.035, 0}, {0.40, 0.068, 0}, 0.006, 0.006, 8);
    for (const double lean : {-1.0, 0.0, 1.0}) { // fins over the back of the body, as thin spikes
        addCylinder(shape, {0.60, 0.035, 0.015 * lean}, {0.54, 0.10, 0.05 * lean}, 0.010, 0, 6);
    }
}

double faces(const Mesh&, const Answers&) { return 1; }

const char* build(const Mesh&, const Answers& answers, Shape& shape) {
    const Vec3 from = answers.position(butt), way = answers.position(muzzle) - from;
    if (isZero(way))
        return "both ends are at the same place: set the two settable points, or give other "
               "numbers";
    for (const auto add : {addBody, addStock, addBarrel, addCoils, addGlow, addSight}) add(shape);
    const Vec3 ahead = frameAlong(way).w;
    const double length = dot(way, ahead);
    // The sight is up; of a rifle that points up itself, to the front.
    const bool upright = std::abs(ahead.y) > 0.99;
    const Vec3 side = unit(cross(ahead, upright ? Vec3{0, 0, 1} : Vec3{0, 1, 0}));
    const Vec3 up = cross(side, ahead);
    for (Vec3& at : shape.points) {
        at = from + (ahead * at.x + up * at.y + side * at.z) * length;
    }
    return nullptr;
}

} // namespace

const Maker rifleMaker = {"RIFLE", "alien rifle", rows, false, false, faces, build};

} // namespace polyfab
