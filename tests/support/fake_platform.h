// SPDX-License-Identifier: GPL-3.0-or-later
// A platform for tests: records what is shown and answers from lists. While one is alive it is the
// current platform.
#pragma once

#include "platform/platform.h"

#include <deque>
#include <string>
#include <vector>

namespace polyfab::test {

class FakePlatform : public Platform {
  public:
    FakePlatform();
    ~FakePlatform() override;

    /// What was shown, in order, one line each: "message|TITLE|TEXT" (a "!" after "message" when it
    /// has the exclamation icon), "question|TITLE|TEXT",
    /// "file|PROMPT|INITIAL", "busy|TEXT", "progress|TEXT|FRACTION", "title|TEXT",
    /// "dialog|NAME|LABEL=DEFAULT", "note|TEXT", "beep", "help|CHAPTER", "page|TITLE|TEXT",
    /// "search", "close", "destroyed".
    std::vector<std::string> log;

    std::deque<Choice> choices;                         ///< for questions; empty: no
    Choice marked = Choice::yes;                        ///< in the last of them
    std::deque<std::optional<std::string>> files;       ///< for file dialogs; empty: cancel
    std::deque<std::vector<std::string>> dialogAnswers; ///< field texts; empty: cancel
    std::deque<DialogResult> dialogResults; ///< how those prompts are left; empty: accept

    mutable double seconds = 0; ///< what the clock for work says
    double secondsPerLook = 0;  ///< that it goes on by whenever it is looked at
    int escapeAfter = -1;       ///< looks until Escape is down; -1: it never is

    Size size{1024, 512};
    double scale = 1;
    bool dark = false;
    int desktopText = 0; ///< height of a line
    std::string windowTitle;
    MenuBar bar;
    std::vector<ToolButton> tools;
    bool toolsShown = true;
    std::vector<int> contextMenu; ///< that was opened last
    StatusLine status;
    ScrollBar scrollBar;
    bool statusShown = true;
    bool watched = false;
    Bitmap picture; ///< what was presented last
    std::optional<Bitmap> clipboard;
    int paintRequests = 0;

    struct Text {
        int x, y;
        std::string text;
        std::uint32_t color;
    };
    std::vector<Text> texts; ///< what was drawn

    std::string title() const override { return windowTitle; }
    void setTitle(const std::string& text) override;
    Size clientSize() const override { return size; }
    double pixelScale() const override { return scale; }
    bool darkTheme() const override { return dark; }
    void setMenuBar(const std::string& name, const MenuBar& menus) override;
    void setMenuItem(int id, bool enabled, bool checked) override;
    void setToolBar(const std::vector<ToolButton>& buttons) override { tools = buttons; }
    void showToolBar(bool shown) override { toolsShown = shown; }
    void openContextMenu(const std::vector<int>& commands) override { contextMenu = commands; }
    void searchCommands() override { log.push_back("search"); }
    void setStatusLine(const StatusLine& line) override { status = line; }
    void showStatusLine(bool shown) override { statusShown = shown; }
    void note(const std::string& text) override { log.push_back("note|" + text); }
    void setScrollBar(const ScrollBar& shown) override { scrollBar = shown; }
    void requestPaint() override { ++paintRequests; }
    void present(const Bitmap& shown) override { picture = shown; }
    void requestClose() override { log.push_back("close"); }
    void destroyWindow() override { log.push_back("destroyed"); }
    bool isWatched() const override { return watched; }
    void message(const std::string& title, const std::string& text, Icon icon) override;
    Choice question(const std::string& title, const std::string& text, Buttons buttons,
                    Choice marked) override;
    std::optional<std::string> fileDialog(const FileRequest& request) override;
    DialogResult dialog(Dialog& dialog) override;
    void showBusy(const std::string& text) override { log.push_back("busy|" + text); }
    void showProgress(const std::string& text, double fraction) override;
    double workSeconds() const override { return seconds += secondsPerLook; }
    void beep() override { log.push_back("beep"); }
    bool escapeDown() override { return escapeAfter >= 0 && escapeAfter-- == 0; }
    void openHelp(const std::string& chapter) override { log.push_back("help|" + chapter); }
    void showPage(const std::string& title, const std::string& text) override {
        log.push_back("page|" + title + "|" + text);
    }
    std::optional<Bitmap> clipboardBitmap() const override { return clipboard; }
    void copyToClipboard(const Bitmap& copied) override { clipboard = copied; }
    void drawText(Bitmap& drawn, int x, int y, const std::string& text, const Font& font,
                  std::uint32_t color) override;
    int desktopTextHeight() const override { return desktopText; }
    /// Half a line height for each byte.
    int textWidth(const std::string& text, const Font& font) override {
        return static_cast<int>(text.size()) * font.height / 2;
    }

  private:
    Platform* before;
};

} // namespace polyfab::test
