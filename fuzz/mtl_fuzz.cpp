// SPDX-License-Identifier: GPL-3.0-or-later
// The text of a material library: names lie in their lines, and numbers are finite.
#include "formats/obj/material_lines.h"
#include "fuzz/fuzz_support.h"

#include <cmath>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace polyfab;
    const std::string text(reinterpret_cast<const char*>(data), size);
    eachLine(text, [](std::string_view line) {
        const auto map = readMapLine(line);
        if (!map) return;
        const bool inside = map->name.data() >= line.data()
                            && map->name.data() + map->name.size() <= line.data() + line.size();
        fuzz::demand(inside && !map->name.empty(), "the name is none");
        fuzz::demand(std::isfinite(map->placing.uScale + map->placing.vOffset), "odd placing");
    });
    for (const LibraryMaterial& material : readLibraryText(text)) {
        fuzz::demand(material.name.size() < nameSize, "the name is too long");
    }
    return 0;
}
