// SPDX-License-Identifier: GPL-3.0-or-later
// A DXF file of any other program: whatever it says, the tables that come of it are sound.
#include "formats/exchange/dxf_scene.h"
#include "fuzz/fuzz_support.h"

#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace polyfab;
    const StreamTables tables = dxfTables(std::string(reinterpret_cast<const char*>(data), size));
    std::size_t corners = 0;
    for (const StreamFace& face : tables.faces) {
        corners += static_cast<std::size_t>(face.corners);
        fuzz::demand(face.corners >= 3, "a face of no area");
        fuzz::demand(static_cast<std::size_t>(face.group) < tables.groups.size(), "no such group");
        fuzz::demand(static_cast<std::size_t>(face.material) < tables.colors.size(),
                     "no such material");
    }
    fuzz::demand(corners == tables.corners.size(), "corners of no face");
    for (const StreamCorner& corner : tables.corners) {
        fuzz::demand(corner.point >= 0
                         && static_cast<std::size_t>(corner.point) < tables.points.size(),
                     "no such point");
    }
    return 0;
}
