// SPDX-License-Identifier: GPL-3.0-or-later
// What drawing has to tell the user, such as that a picture can't be read. The status line is the
// editor's, which takes these there when the event that drew is over.
#pragma once

#include <string>
#include <vector>

namespace polyfab {

inline std::vector<std::string> toldByDisplay;

} // namespace polyfab
