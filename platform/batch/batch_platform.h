// SPDX-License-Identifier: GPL-3.0-or-later
// The modelled window of batch mode: it has a title, menus with their state, a client size and the
// last picture; whatever it would show becomes one JSON object a line on standard output.
#pragma once

#include "platform/batch/script.h"
#include "platform/platform.h"

#include <optional>
#include <string>
#include <string_view>

namespace polyfab {

/// Unwinds from a question without a fitting answer to the run's own loop.
struct Unanswered {
    std::string question; ///< names it for the diagnostic
};

class BatchPlatform : public Platform {
  public:
    BatchPlatform(const Program& program, Size size);

    // What the steps do to the window. The program's handler runs inside these.
    /// A close that the program asks for meanwhile comes before this returns, so that the answers
    /// of the step are there for its questions.
    void send(const Event& event);
    void resize(Size newSize);
    void setAnswers(std::deque<Answer> list) { answers = std::move(list); }
    /// Escape is down from the `looks`-th time (0: the first) that escapeDown is called; nothing:
    /// it is as the key events say.
    void setAbort(std::optional<int> looks) { abortAfter = looks; }
    /// Sends the destroy event if the window still exists; nothing is printed any more.
    void finish();

    bool isOpen() const { return open; }
    /// From now on a box without an answer gets the marked one.
    void agree() { agrees = true; }
    bool answersLeft() const { return !answers.empty(); }
    bool exclamationShown() const { return exclamations > 0; }
    /// The item of the present menu bar with this id, or null.
    const MenuItem* menuItem(int id) { return findItem(bar, id); }
    /// What the window shows now: it is painted first if that is due.
    const Bitmap& currentPicture();
    /// What the status line says; nothing while it is not shown.
    std::optional<StatusLine> statusLine() const {
        return statusShown ? std::optional(status) : std::nullopt;
    }
    const Program& runs() const { return program; }
    /// Prints one line on standard output, or the end of one.
    void print(const std::string& line);
    /// Prints a piece of a line.
    void printPiece(std::string_view piece);

    std::string title() const override { return windowTitle; }
    void setTitle(const std::string& text) override;
    Size clientSize() const override { return size; }
    double pixelScale() const override { return 1; }
    bool darkTheme() const override { return false; }
    void setMenuBar(const std::string& name, const MenuBar& menus) override;
    void setMenuItem(int id, bool enabled, bool checked) override;
    // Nobody points at what stands outside of the client area.
    void setToolBar(const std::vector<ToolButton>&) override {}
    void showToolBar(bool) override {}
    void openContextMenu(const std::vector<int>&) override {}
    void searchCommands() override;
    void setStatusLine(const StatusLine& line) override { status = line; }
    void showStatusLine(bool shown) override { statusShown = shown; }
    void note(const std::string& text) override;
    void setScrollBar(const ScrollBar&) override {} // no step of a script takes hold of it
    void requestPaint() override { paintDue = true; }
    void present(const Bitmap& shown) override { picture = shown; }
    void requestClose() override;
    void destroyWindow() override;
    bool isWatched() const override { return false; }
    void message(const std::string& title, const std::string& text, Icon icon) override;
    Choice question(const std::string& title, const std::string& text, Buttons buttons,
                    Choice marked) override;
    std::optional<std::string> fileDialog(const FileRequest& request) override;
    DialogResult dialog(Dialog& dialog) override;
    void showBusy(const std::string& text) override;
    // Nobody watches the strip, and nothing in a run depends on how long it takes.
    void showProgress(const std::string&, double) override {}
    double workSeconds() const override { return 0; }
    void beep() override;
    bool escapeDown() override;
    void openHelp(const std::string& chapter) override;
    void showPage(const std::string& pageTitle, const std::string& page) override;
    std::optional<Bitmap> clipboardBitmap() const override { return clipboard; }
    void copyToClipboard(const Bitmap& copied) override;
    void drawText(Bitmap& drawn, int x, int y, const std::string& text, const Font& font,
                  std::uint32_t color) override;
    int desktopTextHeight() const override { return 0; }
    int textWidth(const std::string& text, const Font& font) override;

  private:
    void sendDueClose();
    std::optional<Answer> takeAnswer();
    [[noreturn]] void stop(const std::string& question);

    const Program& program;
    std::string windowTitle;
    Size size;
    MenuBar bar;
    StatusLine status;
    Bitmap picture;
    std::optional<Bitmap> clipboard; ///< that of the desktop is left alone
    std::deque<Answer> answers;
    std::optional<int> abortAfter; ///< looks at Escape until it is down
    bool escapeKey = false;        ///< as the last key event of it has it
    int exclamations = 0;
    int depth = 0; ///< handlers that are running now, one inside the other
    bool closeDue = false;
    bool open = true;
    bool agrees = false;
    bool quiet = false;
    bool paintDue = true;
    bool statusShown = true;
};

} // namespace polyfab
