// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace polyfab {

/// What a path ends in: the name of its file, "" behind a slash.
[[nodiscard]] inline std::string fileNameOf(const std::string& path) {
    return path.substr(path.find_last_of('/') + 1);
}

} // namespace polyfab
