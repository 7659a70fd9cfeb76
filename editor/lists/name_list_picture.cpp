// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/lists/name_list_picture.h"

#include "display/look.h"
#include "display/pane_images.h"
#include "editor/editor_state.h"

#include <algorithm>

namespace polyfab {
namespace {

struct Cell {
    Cell(const ListGrid& grid, int place)
        : x(place / grid.rows * grid.columnWidth),
          y(place % grid.rows * grid.rowHeight), size{grid.columnWidth, grid.rowHeight} {}
    int x, y;
    Size size;
};

/// Texts of the column to the left may reach into this cell; they end where another entry begins.
void drawCell(Bitmap& picture, const ListGrid& grid, int place, const std::string& text,
              bool picked, std::uint32_t color) {
    const Cell cell(grid, place);
    fillRectangle(picture, cell.x, cell.y, cell.size, picked ? look.listPicked : look.background);
    if (picked) {
        fillRectangle(picture, cell.x, cell.y, {textIndent, cell.size.height}, look.listPickedBar);
        drawImage(picture, cell.x + 1, cell.y + 2, paneImages.right);
    }
    platform().drawText(picture, cell.x + textIndent, cell.y + 1, text, listFont(grid), color);
}

} // namespace

Bitmap drawNameList(const NameListRow& list, const std::vector<int>& counts, Size client) {
    updateLook();
    Bitmap picture =
        plainPicture(std::max(client.width, 0), std::max(client.height, 0), look.background);
    const ListGrid grid(client);
    if (grid.columnWidth <= 0 || grid.rowHeight <= 0) return picture;
    const int entries = OB->*list.count;
    const int first = nameList.first;
    const int cells = listColumns * grid.rows;
    const int shown = std::min(entries - first, cells);
    for (int place = 0; place < shown; ++place) {
        const int entry = first + place;
        const std::string text = entryText(list, entry, counts[static_cast<std::size_t>(entry)]);
        drawCell(picture, grid, place, text, list.picked(entry),
                 entry == OB->*list.current ? look.listCurrent : look.listText);
    }
    if (entries < cells) {
        drawCell(picture, grid, cells - 1, "(press esc or click a name)", false, look.listText);
    }
    return picture;
}

} // namespace polyfab
