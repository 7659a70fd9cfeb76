// SPDX-License-Identifier: GPL-3.0-or-later
// The makers of spheres, cylinders and tori.
#include "generators/maker.h"
#include "generators/rings.h"
#include "workbench/state.h"

namespace polyfab {
namespace {

constexpr const char* noLength = "both ends are at the same place: set the two settable points, or "
                                 "give other numbers";

bool same(const Vec3& a, const Vec3& b) { return isZero(a - b); }

// The numbers of parameters, here and below.
namespace sphere {
enum { centre, radius = 3, around, up };
constexpr Parameter rows[] = {coordinate("centre x", 0, 0),      coordinate("centre y", 0, 1),
                              coordinate("centre z", 0, 2),      size("radius", 1),
                              count("around", 32, 3, mostFaces), count("up", 16, 2, mostFaces)};

double faces(const Mesh&, const Answers& answers) { return answers[around] * answers[up]; }

const char* build(const Mesh&, const Answers& answers, Shape& shape) {
    addSphere(shape, answers.position(centre), answers[radius], answers.whole(around),
              answers.whole(up));
    return nullptr;
}
} // namespace sphere

namespace cylinder {
enum { end1, end2 = 3, radius1 = 6, radius2, sides };
constexpr Parameter rows[] = {coordinate("end 1 x", 0, 0),      coordinate("end 1 y", 0, 1),
                              coordinate("end 1 z", 0, 2),      coordinate("end 2 x", 1, 0),
                              coordinate("end 2 y", 1, 1),      coordinate("end 2 z", 1, 2),
                              {"radius 1", 1, 0, mostLength},   {"radius 2", 1, 0, mostLength},
                              count("sides", 32, 3, maxIndexed)};

double faces(const Mesh&, const Answers& answers) { return answers[sides] + 2; }

const char* build(const Mesh&, const Answers& answers, Shape& shape) {
    const Vec3 from = answers.position(end1), to = answers.position(end2);
    if (same(from, to)) return noLength;
    if (answers[radius1] == 0 && answers[radius2] == 0) return "one radius has to be more than 0";
    addCylinder(shape, from, to, answers[radius1], answers[radius2], answers.whole(sides));
    return nullptr;
}
} // namespace cylinder

namespace rounded {
enum { end1, end2 = 3, radius = 6, sides, rings };
constexpr Parameter rows[] = {coordinate("end 1 x", 0, 0),
                              coordinate("end 1 y", 0, 1),
                              coordinate("end 1 z", 0, 2),
                              coordinate("end 2 x", 1, 0),
                              coordinate("end 2 y", 1, 1),
                              coordinate("end 2 z", 1, 2),
                              size("radius", 1),
                              count("sides", 32, 3, mostFaces),
                              count("rings of a cap", 8, 1, mostFaces)};

double faces(const Mesh&, const Answers& answers) {
    return answers[sides] * (2 * answers[rings] + 1);
}

const char* build(const Mesh&, const Answers& answers, Shape& shape) {
    const Vec3 from = answers.position(end1), to = answers.position(end2);
    if (same(from, to)) return noLength;
    addRoundedCylinder(shape, from, to, answers[radius], answers.whole(sides),
                       answers.whole(rings));
    return nullptr;
}
} // namespace rounded

namespace torus {
enum { centre, towards = 3, big = 6, small, around, across };
constexpr Parameter rows[] = {coordinate("centre x", 0, 0),
                              coordinate("centre y", 0, 1),
                              coordinate("centre z", 0, 2),
                              coordinate("axis towards x", 1, 0),
                              coordinate("axis towards y", 1, 1),
                              coordinate("axis towards z", 1, 2),
                              size("big radius", 1),
                              size("small radius", 0.25),
                              count("around", 32, 3, mostFaces),
                              count("around the small radius", 16, 3, mostFaces)};

double faces(const Mesh&, const Answers& answers) { return answers[around] * answers[across]; }

const char* build(const Mesh&, const Answers& answers, Shape& shape) {
    const Vec3 at = answers.position(centre), end = answers.position(towards);
    if (same(at, end)) return "the axis has no direction: it ends where it begins";
    if (answers[small] >= answers[big]) {
        return "the small radius has to be less than the big radius";
    }
    addTorus(shape, at, end - at, answers[big], answers[small], answers.whole(around),
             answers.whole(across));
    return nullptr;
}
} // namespace torus

} // namespace

const Maker sphereMaker = {"SPHERE", "sphere",      sphere::rows, true,
                           false,    sphere::faces, sphere::build};
const Maker cylinderMaker = {"CYLINDER", "cylinder",      cylinder::rows, true,
                             false,      cylinder::faces, cylinder::build};
const Maker roundedCylinderMaker = {
    "ROUNDED",     "cylinder with rounded ends", rounded::rows, true, false, rounded::faces,
    rounded::build};
const Maker torusMaker = {"TORUS", "torus", torus::rows, true, false, torus::faces, torus::build};

} // namespace polyfab
