// SPDX-License-Identifier: GPL-3.0-or-later
// One face between two spirals. The corners of both lie at the same angles, turn after turn, so
// that the straight sides of neighbouring turns can't touch.
#include "generators/maker.h"
#include "generators/rings.h"

#include <algorithm>
#include <cmath>

namespace polyfab {
namespace {

enum { centre, inner = 3, turns, pitch, width, perTurn };
constexpr Parameter rows[] = {coordinate("centre x", 0, 0),
                              coordinate("centre y", 0, 1),
                              coordinate("centre z", 0, 2),
                              {"inner radius", 0.2, 0, mostLength},
                              {"turns", 3, 0.001, maxIndexed},
                              size("pitch", 0.25),
                              size("width", 0.1),
                              count("points a turn", 32, 3, maxIndexed)};

/// A spiral has that many steps of the same angle, and one corner more.
double stepsOf(const Answers& answers) { return std::ceil(answers[turns] * answers[perTurn]); }

double faces(const Mesh&, const Answers&) { return 1; }

const char* build(const Mesh&, const Answers& answers, Shape& shape) {
    if (answers[width] >= answers[pitch]) return "the width has to be less than the pitch";
    const double steps = stepsOf(answers);
    if (2 * (steps + 1) > maxIndexed) return "the face would have more than 32,767 corners";
    std::vector<std::int32_t> outside, inside;
    for (double i = 0; i <= steps; ++i) {
        const double step = std::min(i, answers[turns] * answers[perTurn]); // the last is shorter
        const Turn turn = turnBy(step, answers[perTurn]);
        const double radius = answers[inner] + answers[pitch] * (step / answers[perTurn]);
        const Vec3 out{turn.cosine, turn.sine, 0};
        outside.push_back(
            shape.addPoint(answers.position(centre) + out * (radius + answers[width])));
        inside.push_back(shape.addPoint(answers.position(centre) + out * radius));
    }
    outside.insert(outside.end(), inside.rbegin(), inside.rend());
    shape.addFace(outside);
    return nullptr;
}

} // namespace

const Maker spiralMaker = {"SPIRAL", "face with spiral edge", rows, false, false, faces, build};

} // namespace polyfab
