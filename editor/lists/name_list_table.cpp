// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/lists/name_list_table.h"

#include "editor/editor_state.h"
#include "editor/lists/subview.h"
#include "mesh/faces.h"

#include <algorithm>
#include <iterator>

namespace polyfab {
namespace {

template <auto array>
bool isPicked(int entry) {
    return (OB->*array)[entry].selected != 0;
}

template <auto array>
void setPicked(int entry, bool picked) {
    (OB->*array)[entry].selected = picked;
}

template <auto array>
char* nameOf(int entry) {
    return (OB->*array)[entry].name;
}

void addGroup() { OB->addGroup("new_group"); }

void addMaterial() { OB->addMaterial(0xFFFFFF, "new_material"); }

constexpr NameListRow lists[] = {
    {subview::groups, &Mesh::ng, &Mesh::curgroup, &Face::g, isPicked<&Mesh::groups>,
     setPicked<&Mesh::groups>, nameOf<&Mesh::groups>, addGroup, true, true},
    {subview::materials, &Mesh::nmat, &Mesh::curmat, &Face::mat, isPicked<&Mesh::materials>,
     setPicked<&Mesh::materials>, nameOf<&Mesh::materials>, addMaterial},
    {subview::parts, &Mesh::nprt, &Mesh::curprt, &Face::prt, isPicked<&Mesh::parts>,
     setPicked<&Mesh::parts>, nullptr, nullptr},
    {subview::textureMapAreas, &Mesh::ntma, &Mesh::curtma, &Face::tma, isPicked<&Mesh::tmas>,
     setPicked<&Mesh::tmas>, nullptr, nullptr},
};

} // namespace

const NameListRow& nameListRow(int subview) {
    return *std::find_if(std::begin(lists), std::end(lists),
                         [subview](const NameListRow& row) { return row.subview == subview; });
}

std::vector<int> countFaces(const NameListRow& list) {
    const int entries = OB->*list.count;
    const bool all = !nameList.selectedOnly;
    std::vector<int> counts(static_cast<std::size_t>(entries));
    for (const Face& face : liveFaces(*OB)) {
        const int entry = face.*list.field;
        if (entry < 0 || entry >= entries) continue;
        if (all || face.selected) ++counts[static_cast<std::size_t>(entry)];
    }
    return counts;
}

std::string entryName(const NameListRow& list, int entry) {
    return list.name != nullptr ? list.name(entry) : std::to_string(entry);
}

std::string entryText(const NameListRow& list, int entry, int faces) {
    std::string text;
    if (list.texturesShow && nameList.textureNumbers) {
        text = {static_cast<char>('0' + OB->groups[entry].texture), ':'};
    }
    text += entryName(list, entry);
    return text + " (" + std::to_string(faces) + "f" + (nameList.selectedOnly ? " sel" : "") + ")";
}

ListGrid::ListGrid(Size client) : columnWidth(client.width / listColumns) {
    constexpr int mostRows = 32;
    const int lowest = platform().desktopTextHeight() + 1;
    rows = lowest > 1 ? std::clamp(client.height / lowest, 1, mostRows) : mostRows;
    rowHeight = client.height / rows;
}

Font listFont(const ListGrid& grid) { return {std::max(grid.rowHeight - 1, 1), 200}; }

} // namespace polyfab
