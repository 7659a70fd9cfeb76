// SPDX-License-Identifier: GPL-3.0-or-later
// What the four name lists show: how they differ, their entries' texts, and where an entry stands.
// All of it is about OB.
#pragma once

#include "editor/editor_state.h"
#include "mesh/mesh.h"
#include "platform/platform.h"

#include <string>
#include <vector>

namespace polyfab {

struct NameListRow {
    int subview;
    std::int32_t Mesh::*count;
    std::int16_t Mesh::*current;
    std::int16_t Face::*field; ///< names the entry that a face belongs to
    bool (*picked)(int entry);
    void (*pick)(int entry, bool picked);
    char* (*name)(int entry);  ///< nameSize bytes; null: entries have numbers and no names
    void (*add)();             ///< adds an entry; null: the list has no such key
    bool reorders = false;     ///< entries can be dragged to another index
    bool texturesShow = false; ///< entries have texture-map numbers
};

/// The row of this sub-view, which must be that of a list.
[[nodiscard]] const NameListRow& nameListRow(int subview);

/// Per entry, the live faces that belong to it; only the selected ones if the list's switch says
/// so. Faces whose index is out of range count nowhere.
[[nodiscard]] std::vector<int> countFaces(const NameListRow& list);

/// The name of an entry, or its number.
[[nodiscard]] std::string entryName(const NameListRow& list, int entry);

/// What the list shows of an entry.
[[nodiscard]] std::string entryText(const NameListRow& list, int entry, int faces);

inline constexpr int listColumns = 4; ///< of entries that the window shows at once

/// Entries fill columns from top to bottom, and these the window from left to right. Pixels that
/// are left over at the right and at the bottom show nothing; by the same division they stand for
/// the cells that would follow there. There are 32 rows, or as many as leave the texts no smaller
/// than the desktop's own.
struct ListGrid {
    explicit ListGrid(Size client);
    int columnWidth; ///< 0 when the window is too narrow for four columns
    int rows;        ///< in a column, 1 at least
    int rowHeight;   ///< 0 when the window is too low
};

/// Pixels between a cell's left edge and its text.
inline constexpr int textIndent = 5;

[[nodiscard]] Font listFont(const ListGrid& grid);

} // namespace polyfab
