// SPDX-License-Identifier: GPL-3.0-or-later
// What tools refuse before they begin.
#pragma once

#include "mesh/mesh.h"

#include <string>

namespace polyfab {

/// Whether a live face is selected. Otherwise a box says that there are none to do this with.
[[nodiscard]] bool hasFacesTo(const Mesh& mesh, const char* what);

/// Asks for a number in this range, ends included. False when the prompt was left, or after a box
/// that says what the range is.
[[nodiscard]] bool askWithin(const std::string& question, const std::string& defaultAnswer,
                             double least, double most, double& number);

/// The same for a whole number from 1 on.
[[nodiscard]] bool askCount(const std::string& question, const std::string& defaultAnswer, int most,
                            int& number);

/// Whether the number lies in the range; otherwise a box says so.
[[nodiscard]] bool isWithin(double number, double least, double most);

} // namespace polyfab
