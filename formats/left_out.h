// SPDX-License-Identifier: GPL-3.0-or-later
// What the mesh file that was read last holds and the mesh does not.
#pragma once

#include "workbench/notes.h"

#include <cstdint>
#include <string>

namespace polyfab {

struct LeftOut {
    std::int64_t lines = 0; ///< of an OBJ file that were cut in two, or not read for want of an end
    bool elsewhere = false; ///< no face was found, but something that others make faces of
    std::string held;       ///< such as "3 comments, 12 vertex colours": what saving over it loses

    /// Names so many of them, unless there is none.
    void add(const std::string& what, std::int64_t count) {
        if (count > 0) name(counted(count, what));
    }
    void name(const std::string& what) { held += (held.empty() ? "" : ", ") + what; }
};

/// The readers add to it; whoever begins to read resets it.
inline LeftOut leftOut;

} // namespace polyfab
