// SPDX-License-Identifier: GPL-3.0-or-later
// What the mesh file that was read last holds and the mesh does not, or not as it is there.
#pragma once

#include "workbench/notes.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace polyfab {

/// A sentence for addCount and LeftOut::change that several readers have in common.
inline constexpr std::string_view beyondBounds = "{number} beyond all bounds {was} read as 0";

struct LeftOut {
    /// Sentences on lines of an OBJ file that were cut in two, or not read for want of an end.
    std::vector<std::string> lines;
    bool elsewhere = false; ///< no face was found, but something that others make faces of
    bool badLine = false;   ///< a line ended the reading that import would take or leave out
    std::string held;       ///< such as "3 comments, 12 vertex colours": what saving over it loses
    std::string missing;    ///< the same of what a user misses: no comments
    std::vector<std::string> changed; ///< sentences on what was read otherwise than it stands there

    /// Names so many of them as missing, unless there is none.
    void add(const std::string& what, std::int64_t count) {
        if (count > 0) miss(counted(count, what));
    }
    void miss(const std::string& what) {
        append(missing, what);
        hold(what);
    }
    /// Names it as lost by saving only.
    void hold(const std::string& what) { append(held, what); }
    /// A sentence on so many changed ones, unless there is none: see workbench/notes.h.
    void change(std::int64_t count, std::string_view pattern) {
        if (count > 0) changed.push_back(sentence(count, pattern));
    }

  private:
    static void append(std::string& list, const std::string& what) {
        list += (list.empty() ? "" : ", ") + what;
    }
};

/// The readers add to it; whoever begins to read resets it.
inline LeftOut leftOut;

/// Notes what is missing or changed.
void tellLeftOut();

} // namespace polyfab
