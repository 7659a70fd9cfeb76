// SPDX-License-Identifier: GPL-3.0-or-later
// Parts and areas beyond what 16 bits can number.
#pragma once

#include <cstdint>
#include <string>

namespace polyfab {

/// A box says so when more of these were found than can be numbered: the last number stands for all
/// the rest.
void tellIfTooMany(std::int32_t found, const std::string& what);

} // namespace polyfab
