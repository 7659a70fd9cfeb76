// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/color_groups.h"

#include "mesh/faces.h"
#include "mesh/names.h"
#include "platform/platform.h"
#include "tools/asking.h"
#include "workbench/notes.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <map>
#include <set>
#include <string>

namespace polyfab {
namespace {

constexpr std::uint32_t withoutAlpha = 0xFFFFFF;

std::string nameOf(std::uint32_t color) {
    char name[16];
    std::snprintf(name, sizeof name, "color_%06X", static_cast<unsigned>(color));
    return name;
}

} // namespace

void groupByColor(Mesh& mesh) {
    if (!hasFacesTo(mesh, "group by color")) return;
    std::map<std::uint32_t, std::int16_t> groups;
    const auto colorOf = [&](const Face& face) {
        return mesh.materials[face.mat].color & withoutAlpha;
    };
    for (const Face& face : selectedFaces(mesh)) groups.try_emplace(colorOf(face), std::int16_t{0});
    std::set<std::string> names;
    for (std::int32_t i = 0; i < mesh.ng; ++i) names.emplace(mesh.groups[i].name);
    const auto added = std::count_if(groups.begin(), groups.end(), [&](const auto& entry) {
        return !names.contains(nameOf(entry.first));
    });
    if (mesh.ng + added > maxIndexed) {
        platform().message("too many names", "a mesh can have at most 32767 groups",
                           Icon::exclamation);
        return;
    }
    NameTable table(mesh, NameTable::Kind::groups);
    for (auto& [color, group] : groups) {
        group = static_cast<std::int16_t>(table.findOrAdd(nameOf(color)));
    }
    for (Face& face : selectedFaces(mesh)) face.g = groups[colorOf(face)];
    mesh.changed = 1;
    note(counted(std::ssize(groups), "color") + " found");
}

} // namespace polyfab
