// SPDX-License-Identifier: GPL-3.0-or-later
// The four lists take the same events; where they differ, they ask their row of the table. Whatever
// closes the list does so last: there is no row to ask afterwards.
#include "editor/lists/name_list.h"

#include "display/material_looks.h"
#include "display/view.h"
#include "editor/command_table.h"
#include "editor/editor_state.h"
#include "editor/input.h"
#include "editor/lists/name_list_picture.h"
#include "editor/lists/name_list_table.h"
#include "editor/lists/subview.h"
#include "mesh/faces.h"
#include "mesh/group_order.h"
#include "mesh/names.h"
#include "mesh/stale.h"
#include "workbench/notes.h"
#include "workbench/prompts.h"
#include "workbench/state.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <iterator>
#include <string>
#include <string_view>

namespace polyfab {
namespace {

using List = NameListRow;

/// The entry at this client position, or -1.
int entryAt(const List& list, int x, int y) {
    const ListGrid grid(platform().clientSize());
    if (x < 0 || y < 0 || grid.columnWidth <= 0 || grid.rowHeight <= 0) return -1;
    const std::int64_t column = x / grid.columnWidth;
    const std::int64_t entry = nameList.first + column * grid.rows + y / grid.rowHeight;
    return entry < OB->*list.count ? static_cast<int>(entry) : -1;
}

/// The entry under the mouse becomes the pointed and the current one.
void pointAtMouse(const List& list) {
    nameList.pointed = entryAt(list, nameList.x, nameList.y);
    OB->*list.current = static_cast<std::int16_t>(nameList.pointed);
}

/// The columns of the whole list.
int columnsOf(const List& list, const ListGrid& grid) {
    return (OB->*list.count + grid.rows - 1) / grid.rows;
}

void showScrollBar(const List& list) {
    const ListGrid grid(platform().clientSize());
    platform().setScrollBar({nameList.first / grid.rows, listColumns, columnsOf(list, grid)});
}

/// The text of the pointed entry when it is too long for its column; otherwise "".
std::string longText(const List& list, const std::vector<int>& counts) {
    const int entry = nameList.pointed;
    if (entry < 0 || entry >= OB->*list.count) return "";
    const ListGrid grid(platform().clientSize());
    const std::string text = entryText(list, entry, counts[static_cast<std::size_t>(entry)]);
    const int room = grid.columnWidth - textIndent;
    return platform().textWidth(text, listFont(grid)) > room ? text : "";
}

/// The title says where we are, unless there is a long text to be read.
void showTitle(const std::string& text) {
    nameList.longTextShown = !text.empty();
    if (text.empty()) {
        updateTitle();
    } else {
        platform().setTitle(text);
    }
}

/// Something that the list shows has changed.
void refresh(const List& list) {
    const std::string text = longText(list, countFaces(list));
    if (!text.empty() || nameList.longTextShown) showTitle(text);
    platform().requestPaint();
}

void pickAll(const List& list, bool picked) {
    for (int entry = 0; entry < OB->*list.count; ++entry) list.pick(entry, picked);
}

void rename(const List& list, int entry) {
    OB->changed = 1;
    askText("new name?", list.name(entry));
    // The buffer holds what was typed, or after cancel the name itself.
    const std::string_view kept = storedName(prompts.answer[0]);
    char* const name = list.name(entry);
    if (list.subview == subview::materials) keepLook(name, kept);
    std::fill_n(std::copy(kept.begin(), kept.end(), name), nameSize - kept.size(), '\0');
}

void clickEntry(const List& list, int entry) {
    const bool adds = keyIsDown(key::ctrl);
    nameList.toggled = adds;
    if (!adds) pickAll(list, false);
    list.pick(entry, !list.picked(entry));
    if (adds || keyIsDown(key::alt)) return;
    nameList.closingKey = 0;
    closeSubview();
}

/// The button went up here, after a press elsewhere in a list whose entries can be moved. That was
/// no click then.
const char* dropEntry(const List& list, int entry) {
    const int pressed = nameList.pressed;
    if (nameList.toggled) list.pick(pressed, !list.picked(pressed));
    if (entry < 0) return "";
    moveGroup(*OB, pressed, entry);
    return "reorder";
}

/// What the buttons do to the pointed entry. What undo calls it, if that is not like the list; else
/// "".
const char* useButtons(const List& list) {
    const int entry = nameList.pointed;
    const int history = editorState.buttons;
    if (leftPressed()) {
        nameList.pressed = entry;
        nameList.toggled = false;
    }
    const int pressed = nameList.pressed;
    if (history == 4 && list.reorders && pressed >= 0 && pressed != entry) {
        return dropEntry(list, entry);
    }
    if (entry < 0) return "";
    if (history == 1) clickEntry(list, entry);
    if (history == 2 && list.name != nullptr) {
        rename(list, entry);
        return "rename";
    }
    return "";
}

const char* onMouse(const List& list, const Event& event) {
    noteMouse(event);
    const int before = OB->*list.current;
    nameList.x = event.x;
    nameList.y = event.y;
    pointAtMouse(list);
    const char* const step = useButtons(list);
    if (editorState.subview == 0) return step;
    const bool buttonsMoved = (editorState.buttons >> 2) != (editorState.buttons & 3);
    if (buttonsMoved || OB->*list.current != before) refresh(list);
    return step;
}

/// Puts this column first, as far as there are entries for a full window.
void scrollTo(const List& list, int column) {
    const ListGrid grid(platform().clientSize());
    const int last = std::max(columnsOf(list, grid) - listColumns, 0);
    nameList.first = std::clamp(column, 0, last) * grid.rows;
    showScrollBar(list);
}

void scroll(const List& list, int columns) {
    const ListGrid grid(platform().clientSize());
    scrollTo(list, nameList.first / grid.rows + columns);
    if (nameList.x >= 0) pointAtMouse(list); // another entry has come under the mouse
}

/// The entry becomes the pointed one, wherever the mouse is, and is scrolled into view.
void goToEntry(const List& list, int entry) {
    nameList.pointed = entry;
    OB->*list.current = static_cast<std::int16_t>(entry);
    const ListGrid grid(platform().clientSize());
    const int column = entry / grid.rows, first = nameList.first / grid.rows;
    scrollTo(list, std::clamp(first, column - listColumns + 1, column));
}

/// Goes to the next entry, behind the current one and then from the first on, that begins with the
/// letter or digit.
void jump(const List& list, int letter) {
    const int entries = OB->*list.count;
    for (int i = 1; i <= entries; ++i) {
        const int entry = (OB->*list.current + i) % entries;
        const std::string name = entryName(list, entry);
        if (!name.empty() && std::toupper(static_cast<unsigned char>(name[0])) == letter) {
            return goToEntry(list, entry);
        }
    }
    note(std::string("nothing here begins with ") + static_cast<char>(letter));
}

void onWheel(const List& list, const Event& event) {
    nameList.x = event.x;
    nameList.y = event.y;
    nameList.wheel = std::clamp(nameList.wheel + event.steps, -1000.0, 1000.0);
    const double whole = std::trunc(nameList.wheel);
    nameList.wheel -= whole;
    if (whole == 0) return;
    scroll(list, -static_cast<int>(whole));
    refresh(list);
}

void closeByKey(const List&, int code) {
    nameList.closingKey = code;
    closeSubview();
}

void addEntry(const List& list, int) {
    list.add();
    showScrollBar(list);
}

void toggleSelectedOnly(const List&, int) { nameList.selectedOnly = !nameList.selectedOnly; }

void setTextureNumbers(const List&, int) {
    for (Group* group = OB->groups; group != OB->groups + OB->ng; ++group) {
        if (group->selected) group->texture = static_cast<std::uint8_t>(workbench.textureNumber);
    }
}

bool hasCurrent(const List& list) {
    return OB->*list.current >= 0 && OB->*list.current < OB->*list.count;
}

void toggleCurrent(const List& list, int) {
    const int entry = OB->*list.current;
    if (hasCurrent(list)) list.pick(entry, !list.picked(entry));
}

/// The same as a click on it.
void takeCurrent(const List& list, int) {
    if (!hasCurrent(list)) return;
    pickAll(list, false);
    list.pick(OB->*list.current, true);
    closeByKey(list, 0);
}

struct KeyRow {
    int code;
    KeyWords words;
    void (*act)(const List& list, int code);
    const char* step = "";                    ///< what undo calls it, see useButtons
    bool (*used)(const List& list) = nullptr; ///< null: by every list
};

constexpr KeyRow keyRows[] = {
    {key::escape, {"Escape", "closes the list"}, closeByKey},
    {key::f1, {"F1", "closes the list"}, closeByKey},
    {key::f2, {"F2", "closes the list"}, closeByKey},
    {key::f3, {"F3", "closes the list"}, closeByKey},
    {key::pageUp,
     {"Page Up, wheel", "scrolls back"},
     [](const List& list, int) { scroll(list, -listColumns); }},
    {key::pageDown,
     {"Page Down, wheel", "scrolls on"},
     [](const List& list, int) { scroll(list, listColumns); }},
    {key::space, {"Space", "picks the current entry, or no longer"}, toggleCurrent},
    {key::enter, {"Enter", "picks just the current entry and closes the list"}, takeCurrent},
    {'A', {"A", "picks all"}, [](const List& list, int) { pickAll(list, true); }},
    {'C', {"C", "picks none"}, [](const List& list, int) { pickAll(list, false); }},
    {'N',
     {"N", "adds a new group or material"},
     addEntry,
     "new name",
     [](const List& list) { return list.add != nullptr; }},
    {'S', {"S", "counts selected faces only, or all again"}, toggleSelectedOnly},
    {'T',
     {"T", "gives the picked groups the chosen texture map number"},
     setTextureNumbers,
     "set texture map number",
     [](const List& list) { return list.texturesShow; }},
};

constexpr KeyRow jumpRow = {
    0, {"other letters and digits, each with Shift", "go to a name that begins so"}, jump};

/// What the key does in the list; null: nothing. Letters that have no use of their own there, and
/// all of them with Shift, go to a name.
const KeyRow* rowOf(const List& list, int code) {
    const bool isLetter = (code >= 'A' && code <= 'Z') || (code >= '0' && code <= '9');
    const bool types = isLetter && !keyIsDown(key::alt) && !keyIsDown(key::ctrl);
    if (types && keyIsDown(key::shift)) return &jumpRow;
    for (const KeyRow& row : keyRows) {
        if (row.code == code && (row.used == nullptr || row.used(list))) return &row;
    }
    return types ? &jumpRow : nullptr;
}

const char* onKeyDown(const List& list, const Event& event) {
    // A code that no key has is in no row.
    const KeyRow* const row = rowOf(list, event.key);
    const bool acts = row != nullptr && !keyIsDown(event.key); // no repeats
    noteKey(event);
    if (!acts) return "";
    row->act(list, event.key);
    if (editorState.subview != 0) refresh(list);
    return row->step;
}

void onKeyUp(const List&, const Event& event) { noteKey(event); }

void onKeysLost(const List&, const Event&) { clearKeys(); }

void onPaint(const List& list, const Event&) {
    const std::vector<int> counts = countFaces(list);
    showTitle(longText(list, counts));
    platform().present(drawNameList(list, counts, platform().clientSize()));
}

void onResize(const List& list, const Event&) {
    resizeView(platform().clientSize());
    scroll(list, 0);
    platform().requestPaint();
}

void onCommand(const List& list, const Event& event) {
    const bool numbers = event.command == commandid::textureNumbers && list.texturesShow;
    const Command* const command = findCommand(event.command);
    const bool helps = command != nullptr && command->menu == std::string_view(helpMenu);
    if (!helps && event.command != exitCommand && !numbers) return;
    runCommand(event.command);
    refresh(list);
}

void onClose(const List&, const Event&) { closeUnlessRefused(); }

void onDrop(const List&, const Event&) {
    platform().beep();
    platform().setTitle("close this list first, then drop the file");
}

/// An event that leads to no step of a name of its own.
template <void (*handle)(const List&, const Event&)>
const char* plain(const List& list, const Event& event) {
    handle(list, event);
    return "";
}

struct Route {
    EventKind kind;
    const char* (*handle)(const List&, const Event&); ///< what undo calls it, see useButtons
};

/// The window has been created before any list opens, and destroys itself.
constexpr Route routes[] = {
    {EventKind::resize, plain<onResize>},
    {EventKind::deactivate, plain<onKeysLost>},
    {EventKind::menuOpening, plain<onKeysLost>},
    {EventKind::paint, plain<onPaint>},
    {EventKind::close, plain<onClose>},
    {EventKind::keyDown, onKeyDown},
    {EventKind::keyUp, plain<onKeyUp>},
    {EventKind::mouse, onMouse},
    {EventKind::wheel, plain<onWheel>},
    {EventKind::command, plain<onCommand>},
    {EventKind::drop, plain<onDrop>},
    {EventKind::lookChange, plain<onResize>},
};

} // namespace

std::vector<KeyWords> nameListKeys() {
    std::vector<KeyWords> all;
    for (const KeyRow& row : keyRows) all.push_back(row.words);
    all.push_back(jumpRow.words);
    return all;
}

void openNameList() {
    const NameListState before = nameList;
    nameList = NameListState();
    nameList.selectedOnly = before.selectedOnly;
    nameList.textureNumbers = before.textureNumbers;
    showScrollBar(nameListRow(editorState.subview));
}

std::string nameListRange() {
    const NameListRow& list = nameListRow(editorState.subview);
    const int entries = OB->*list.count;
    const int end = nameList.first + listColumns * ListGrid(platform().clientSize()).rows;
    int picked = 0;
    for (int entry = 0; entry < entries; ++entry) picked += list.picked(entry) ? 1 : 0;
    return counted(std::min(nameList.first + 1, entries)) + "-" + counted(std::min(end, entries))
           + " of " + counted(entries) + " " + workbench.modeName + ", " + counted(picked)
           + " picked";
}

const char* handleInNameList(const Event& event) {
    for (const Route& route : routes) {
        if (route.kind == event.kind) return route.handle(nameListRow(editorState.subview), event);
    }
    return "";
}

void applyNameList(int subview) {
    const NameListRow& list = nameListRow(subview);
    for (Face& face : liveFaces(*OB)) {
        const int entry = face.*list.field;
        face.selected = entry >= 0 && entry < OB->*list.count && list.picked(entry);
    }
    noteSelection();
}

void toggleTextureNumbers() { nameList.textureNumbers = !nameList.textureNumbers; }

bool showsTextureNumbers() { return nameList.textureNumbers; }

} // namespace polyfab
