// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace polyfab {

/// The names of what is in the folder; none when it can't be read. Unlike the library's iterator it
/// can be called where memory runs out: that ends the process, this throws.
[[nodiscard]] std::vector<std::string> namesIn(const std::string& folder);

/// Whether it can be told that nothing is at the path, not even a link that leads nowhere.
[[nodiscard]] bool isFreeName(const std::string& path);

} // namespace polyfab
