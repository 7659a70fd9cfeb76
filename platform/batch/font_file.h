// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace polyfab {

struct FontFile {
    std::string path; ///< empty: there is none
    int index = 0;    ///< of the face in the file
};

/// The file of the system's usual font without serifs, of this weight (400: normal).
[[nodiscard]] FontFile findFontFile(int weight);

} // namespace polyfab
