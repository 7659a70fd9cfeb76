// SPDX-License-Identifier: GPL-3.0-or-later
// The text of material libraries: what it says of each material.
#pragma once

#include "display/material_looks.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace polyfab {

struct LibraryMaterial {
    std::string name;
    std::optional<std::uint32_t> color{}; ///< 0xRRGGBB
    double opacity = 1;
    std::string picture{}; ///< as fileNameIn gives it; "": none
    PicturePlacing placing{};
    std::string_view map{};                 ///< the line with the picture
    std::vector<std::string_view> others{}; ///< its lines that say nothing of all this
};

/// The materials in their order. What is no line of theirs is passed over. Keywords may have any
/// case, lines any end, the last one none. Lines lead into the text.
[[nodiscard]] std::vector<LibraryMaterial> readLibraryText(std::string_view text);

/// What a line says that names a picture.
struct MapLine {
    std::string_view name; ///< its place in the line, quotes around it left out
    PicturePlacing placing;
};

/// Of a line like "map_Kd -s 2 2 some name.png -clamp on", whatever the picture is for; nothing if
/// it is none.
[[nodiscard]] std::optional<MapLine> readMapLine(std::string_view line);

/// Calls act(line) for each line of the text, its end left out.
template <typename Act>
void eachLine(std::string_view text, Act act) {
    while (!text.empty()) {
        const std::size_t end = text.find_first_of("\r\n");
        act(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
}

} // namespace polyfab
