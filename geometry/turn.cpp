// SPDX-License-Identifier: GPL-3.0-or-later
// The angle is brought into an eighth of a turn without rounding, as the part of a quarter turn
// that it is, and the sine and cosine of that are exchanged and negated.
#include "geometry/turn.h"

#include <cmath>
#include <utility>

namespace polyfab {

Turn turnBy(double part, double whole) {
    if (part < 0) {
        const Turn mirrored = turnBy(-part, whole);
        return {mirrored.cosine, 0 - mirrored.sine};
    }
    const double rest = std::fmod(4 * part, whole);
    const double quarters = std::fmod((4 * part - rest) / whole, 4);
    const bool beyondHalf = 2 * rest > whole;
    const double angle = 2 * std::atan(1.0) * ((beyondHalf ? whole - rest : rest) / whole);
    Turn turn{std::cos(angle), std::sin(angle)};
    if (2 * rest == whole) turn.cosine = turn.sine = std::sqrt(0.5);
    if (beyondHalf) std::swap(turn.cosine, turn.sine);
    // Taken from 0 so that no zero is negative.
    for (int i = 0; i < quarters; ++i) turn = {0 - turn.sine, turn.cosine};
    return turn;
}

std::vector<Turn> turnsOf(int n) {
    std::vector<Turn> turns(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) turns[static_cast<std::size_t>(i)] = turnBy(i, n);
    return turns;
}

} // namespace polyfab
