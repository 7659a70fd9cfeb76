// SPDX-License-Identifier: GPL-3.0-or-later
// Names of materials that are those of others with a number behind them, since many formats know
// materials by their names only.
#pragma once

#include "formats/dxf/dxf_drawing.h"
#include "io/utf8.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>

namespace polyfab {

/// What a numbered name has of this one: with any number it is still a name that is not cut.
[[nodiscard]] inline std::string numberedStem(const std::string& name) {
    constexpr std::size_t longest = 52;
    return beginningOf(name, longest);
}

class NumberedNames {
  public:
    /// No numbered name is to be this one, in capitals or not.
    void avoid(const std::string& name) { avoided.insert(foldedName(name)); }

    /// The next one of this name; the first is number 2.
    [[nodiscard]] std::string next(const std::string& name) {
        const std::string start = numberedStem(name);
        std::int64_t& last = lastNumber.try_emplace(foldedName(start), 1).first->second;
        std::string numbered;
        do {
            numbered = start + " " + std::to_string(++last);
        } while (avoided.contains(foldedName(numbered)));
        return numbered;
    }

  private:
    std::set<std::string> avoided;
    std::map<std::string, std::int64_t> lastNumber; ///< behind that beginning of names
};

} // namespace polyfab
