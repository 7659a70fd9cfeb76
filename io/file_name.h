// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace polyfab {

/// What a path ends in: the name of its file, "" behind a slash.
[[nodiscard]] inline std::string fileNameOf(const std::string& path) {
    return path.substr(path.find_last_of('/') + 1);
}

/// Some formats name files as addresses of the web do, "%20" for a blank.
[[nodiscard]] std::string withoutPercents(std::string_view name);

} // namespace polyfab
