// SPDX-License-Identifier: GPL-3.0-or-later
// The windowing system as the editor sees it: plain records and one interface, standard library
// only. Events come in through Program::handle; everything else goes out through Platform.
// Two backends implement it: platform/qt (a real window) and platform/batch (a modelled one).
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace polyfab {

/// An off-screen picture, rows from the top, each pixel 0xFFRRGGBB.
struct Bitmap {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;
};

struct Size {
    int width = 0;
    int height = 0;
};

struct Font {
    int height = 12;  ///< pixels of a line of text
    int weight = 400; ///< 100 thin, 400 regular, 700 bold
};

enum class Icon { none, exclamation };
enum class Buttons { yesNo, yesNoCancel };
enum class Choice { cancel = -1, no = 0, yes = 1 };

struct FileFilter {
    std::string description;
    std::string pattern; ///< globs parted by ";", such as "*.DXF;*.OBJ"; case does not matter
};

struct FileRequest {
    bool save = false; ///< save asks before overwriting; open wants a file that exists
    std::string prompt;
    std::vector<FileFilter> filters;
    std::string initial; ///< name or path the dialog starts with
    /// For a save: the file that choosing this name will write, where that is another one. It is
    /// not to be overwritten unasked either.
    std::function<std::string(const std::string& chosen)> written{};
    /// For a save, and for a window only: the file whose folder and name it starts with, in place
    /// of `initial`; "": there is none.
    std::string current{};
    /// What a window gives a name without a suffix, such as ".obj", and that file's name in place
    /// of its own; "": nothing.
    std::string suffix{};
};

struct DialogField {
    std::string label;
    std::string text;      ///< default in, answer out; "1" or "0" for a check box
    bool checkBox = false; ///< a check box instead of a text field
};

struct MenuItem {
    int id = 0;        ///< 0: a separator or, where it has items, a menu of its own
    std::string label; ///< "&" stands before the mnemonic letter
    bool enabled = true;
    bool checkable = false;
    bool checked = false;
    std::string key{};    ///< shortcut such as "Ctrl+O", or several parted by "; "; empty: none
    bool radio = false;   ///< checkable, and one of several of which one holds
    std::string name{};   ///< the label where no letter has to be marked
    std::string advice{}; ///< a sentence on what it does; empty: none
    std::vector<MenuItem> items{};
};

struct Menu {
    std::string title;
    std::vector<MenuItem> items;
};

using MenuBar = std::vector<Menu>;

/// One button of the tool bar. A command that the present menu bar does not have is greyed.
struct ToolButton {
    int id = 0;       ///< 0: a separator
    std::string icon; ///< name of its picture
};

/// The item of this id, which is not 0, or null.
inline MenuItem* findItem(std::vector<MenuItem>& items, int id) {
    for (MenuItem& item : items) {
        if (item.id == id) return &item;
        if (MenuItem* const found = findItem(item.items, id)) return found;
    }
    return nullptr;
}
inline MenuItem* findItem(MenuBar& bar, int id) {
    for (Menu& menu : bar) {
        if (MenuItem* const found = findItem(menu.items, id)) return found;
    }
    return nullptr;
}

/// What the line at the bottom of the window says.
struct StatusLine {
    std::string left;  ///< what the mouse does, or what was done; gives way when room is short
    std::string right; ///< what the window shows
};

/// Which part of a row of columns, pages or the like the window shows.
struct ScrollBar {
    int first = 0; ///< of those that are shown
    int shown = 0;
    int all = 0;
};

/// Virtual-key codes that have a name here; letters and digits are their capital ASCII codes.
namespace key {
inline constexpr int enter = 13, shift = 16, ctrl = 17, alt = 18, escape = 27, space = 32,
                     pageUp = 33, pageDown = 34, end = 35, home = 36, left = 37, up = 38,
                     right = 39, down = 40, del = 46, keypadPoint = 110, f1 = 112, f2 = 113,
                     f3 = 114, fullStop = 190;
}

/// Commands that are spoken of outside of the command table.
namespace commandid {
inline constexpr int readMesh = 256, writeDxf = 257, write3ds = 258, writeObj = 259, help = 263,
                     textureNumbers = 385, importMesh = 2001, exportMesh = 2002, save = 2040,
                     firstRecentFile = 2020;
}

/// Mouse buttons as a bit set.
namespace button {
inline constexpr unsigned left = 1, right = 2, middle = 4;
}

enum class EventKind {
    create,      ///< the window exists; it has a client size and takes a menu bar
    destroy,     ///< the window is about to go; the last event
    resize,      ///< the client size changed
    deactivate,  ///< the window is no longer the active one
    menuOpening, ///< a menu is about to open
    paint,       ///< the handler answers with Platform::present
    close,       ///< a wish to close; the handler calls Platform::destroyWindow to grant it
    keyDown,     ///< key; a held key repeats it
    keyUp,       ///< key
    mouse,       ///< x, y, buttons (the state after whatever happened)
    wheel,       ///< x, y, steps
    command,     ///< command
    drop,        ///< paths: files dropped on the window
    lookChange,  ///< the desktop has become dark or light
    start,       ///< the window is drawn and takes questions; paths: the file named on the command
                 ///< line, if any. Comes once at most, before what the user does
    idle,        ///< the user has done nothing for a moment, and holds no button
    sessionEnd,  ///< the process will end without asking: what is to last must be on the disk when
                 ///< the handler returns. Also comes while another handler runs
};

struct Event {
    EventKind kind = EventKind::paint;
    int command = 0;
    int key = 0; ///< virtual-key code, 1 to 255
    int x = 0;   ///< client position in device pixels
    int y = 0;
    unsigned buttons = 0;
    std::vector<std::string> paths{};
    double steps = 0; ///< of the wheel, away from the user; fractions come from fine wheels
};

/// One modal prompt: labelled fields from top to bottom, then "accept" and "cancel".
struct Dialog {
    std::string name; ///< which of the editor's dialogs it is, such as "ASKDB"
    std::string title;
    std::vector<DialogField> fields;
    /// Told of each key that goes down or up while the dialog is open; no event tells of them. Keys
    /// that are still down when it closes are told to be up, Escape included.
    std::function<void(const Event&)> onKey{};
    /// Told of the fields as they are, whenever the user has changed one. A window whose dialog has
    /// this goes on taking paint events while it is open, so that it can show what the fields mean.
    std::function<void(const std::vector<DialogField>&)> onChange{};
};

/// How a prompt was left. The fields hold the edited texts after accept and escape; after cancel
/// they are unchanged.
enum class DialogResult { accept, cancel, escape };

/// The windowing operations. All texts are UTF-8. All sizes and positions are device pixels.
/// A question that nobody will ever answer (a headless run without answers) does not return: the
/// backend unwinds the stack to its own event loop, so callers hold what they own in destructors.
class Platform {
  public:
    Platform() = default;
    Platform(const Platform&) = delete;
    Platform& operator=(const Platform&) = delete;
    virtual ~Platform() = default;

    // The window.
    virtual std::string title() const = 0;
    virtual void setTitle(const std::string& text) = 0;
    virtual Size clientSize() const = 0;
    /// Device pixels to one of the desktop's pixels, 1 or more: 2 where everything on the desktop
    /// is drawn twice as large, so that it keeps its size to the eye.
    virtual double pixelScale() const = 0;
    /// Whether the desktop shows light on dark. A lookChange event tells when that changes.
    virtual bool darkTheme() const = 0;
    /// Puts the menu bar of this name on the window, in place of the one before.
    virtual void setMenuBar(const std::string& name, const MenuBar& bar) = 0;
    /// The line stands below the client area. It is shown from the start.
    virtual void setStatusLine(const StatusLine& line) = 0;
    virtual void showStatusLine(bool shown) = 0;
    /// Tells what a command did or left out: in the left of the status line, until that is set
    /// anew.
    virtual void note(const std::string& text) = 0;
    /// A scroll bar below the client area, unless all is shown. Where the user takes it comes as
    /// turns of the wheel at (-1, -1): a step for each unit, towards him for those behind.
    virtual void setScrollBar(const ScrollBar& bar) = 0;
    /// Changes one item of the present menu bar; an id that is not there is ignored.
    virtual void setMenuItem(int id, bool enabled, bool checked) = 0;
    /// Puts buttons above the client area, for commands of the menu bar, and shows them.
    virtual void setToolBar(const std::vector<ToolButton>& buttons) = 0;
    virtual void showToolBar(bool shown) = 0;
    /// Opens a menu under the mouse, with these commands of the present menu bar (0: a separator),
    /// once the handler that runs now has returned.
    virtual void openContextMenu(const std::vector<int>& commands) = 0;
    /// Lets the user search the commands of the present menu bar; the one chosen comes as a
    /// command event, once the handler that runs now has returned.
    virtual void searchCommands() = 0;
    /// Asks for a paint event some time soon.
    virtual void requestPaint() = 0;
    /// Copies the picture to the window; called while a paint event is handled.
    virtual void present(const Bitmap& picture) = 0;
    /// Sends the window a close event, as its close box does, once the handler that runs now has
    /// returned.
    virtual void requestClose() = 0;
    /// Sends the destroy event, removes the window and ends the event loop.
    virtual void destroyWindow() = 0;

    // Modal boxes.
    /// Whether somebody sits at the window. Nobody does in a headless run: what is merely offered
    /// is not asked there.
    virtual bool isWatched() const = 0;
    /// What the user did that boxes come of from now on: those without a title carry it as theirs.
    virtual void nameBoxes(const std::string&) {}
    virtual void message(const std::string& title, const std::string& text, Icon icon) = 0;
    /// `marked` is the answer that the Enter key gives.
    virtual Choice question(const std::string& title, const std::string& text, Buttons buttons,
                            Choice marked = Choice::yes) = 0;
    /// The path chosen, or nothing after cancel.
    virtual std::optional<std::string> fileDialog(const FileRequest& request) = 0;
    virtual DialogResult dialog(Dialog& dialog) = 0;

    // Others.
    /// Shows a notice over the window, and over the notices before it, at once and without waiting
    /// for events; "" removes the latest one.
    virtual void showBusy(const std::string& text) = 0;
    /// Shows a strip along the bottom of the window, over what is there: the text, and a bar that
    /// is full up to `fraction` (0 to 1) or, below 0, only moves at each call. "" removes it. Lets
    /// the window redraw itself; what the user does to it meanwhile waits, Escape too.
    virtual void showProgress(const std::string& text, double fraction) = 0;
    /// A clock for work, good to a hundredth of a second and cheap to look at: seconds since some
    /// moment, without the time that a modal box was open. It stands still where nobody waits.
    virtual double workSeconds() const = 0;
    virtual void beep() = 0;
    /// Whether the Escape key is down: long work looks every now and then and stops if so. Lets the
    /// window redraw itself meanwhile; what the user does to it, Escape excepted, counts for
    /// nothing then. A close event comes all the same, inside the handler that runs: refuse it.
    virtual bool escapeDown() = 0;
    /// Opens the manual at this chapter, such as "the-box"; "": at its beginning. Does not wait.
    virtual void openHelp(const std::string& chapter) = 0;
    /// Shows a page of Markdown text beside the window. Does not wait.
    virtual void showPage(const std::string& title, const std::string& text) = 0;
    /// The picture that the clipboard holds, if it holds one: 0xAARRGGBB, alpha not premultiplied.
    virtual std::optional<Bitmap> clipboardBitmap() const = 0;
    virtual void copyToClipboard(const Bitmap& picture) = 0;
    /// Draws one line of text in a proportional font, its upper left corner at (x, y), cut off at
    /// the picture's sides. Bytes that are no UTF-8 are shown as U+FFFD.
    /// No font, or a height below 1: nothing is drawn, and the width is 0.
    virtual void drawText(Bitmap& picture, int x, int y, const std::string& text, const Font& font,
                          std::uint32_t color) = 0;
    /// Pixels of a line in the font of the desktop's own menus and buttons; 0: there is no desktop.
    virtual int desktopTextHeight() const = 0;
    /// Pixels that drawText advances for this text.
    virtual int textWidth(const std::string& text, const Font& font) = 0;
};

/// The backend of this run. setPlatform comes before anything else that the editor does.
inline Platform* currentPlatform = nullptr;
inline Platform& platform() { return *currentPlatform; }
inline void setPlatform(Platform* backend) { currentPlatform = backend; }

/// One row of the editor's command table, as a backend or a script sees it.
struct CommandInfo {
    int id = 0;
    std::string menu;
    std::string label;
    bool ready = false; ///< false: not built yet, greyed in the menu
    std::string key{};
    std::string advice{}; ///< what it does, in a sentence
};

/// Takes a text piece by piece, in order.
using TextSink = std::function<void(std::string_view piece)>;

/// How often what is not saved is kept, unless somebody wants it otherwise.
inline constexpr int usualRecoverySeconds = 120;

/// What a backend needs of the program that it runs.
struct Program {
    void (*handle)(const Event& event) = nullptr;
    std::vector<CommandInfo> (*commands)() = nullptr;
    std::string (*stateJson)() = nullptr; ///< the editor's state as one JSON object on one line
    /// Hands out the whole mesh as one JSON object on one line.
    void (*writeDump)(const TextSink& sink) = nullptr;
    /// Lets the program keep things from run to run in this folder, and what the user has not saved
    /// every so many seconds.
    void (*useStateFolder)(const std::string& folder, int recoverySeconds) = nullptr;
    /// The bytes that undo may take; 0: there is none.
    void (*setUndoMemory)(std::uint64_t bytes) = nullptr;
    /// What is worth to know of how it runs on this system, in lines.
    std::string (*about)() = nullptr;
};

} // namespace polyfab
