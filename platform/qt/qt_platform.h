// SPDX-License-Identifier: GPL-3.0-or-later
// The windowing operations on a real window. A QApplication must exist.
#pragma once

#include "platform/platform.h"
#include "platform/qt/folders.h"
#include "platform/qt/help.h"
#include "platform/qt/input_filter.h"
#include "platform/qt/progress_strip.h"
#include "platform/qt/window.h"
#include "platform/qt/work_clock.h"

#include <QEventLoop>
#include <QImage>
#include <QLabel>
#include <QTimer>

#include <chrono>
#include <deque>
#include <memory>
#include <string>

namespace polyfab {

class QtPlatform : public Platform {
  public:
    /// What is kept from run to run goes into the folder; with "" nothing is.
    explicit QtPlatform(const Program& program, const std::string& stateFolder = "");
    ~QtPlatform() override;

    /// Sends the create event and shows the window, and the start event with the file (none if
    /// empty) once it is drawn.
    void start(const std::string& file);
    /// Handles events until the program destroys the window.
    void run();
    /// The signal that has ended the run, or 0.
    int endedBy() const { return endSignal; }
    Window& mainWindow() { return window; }

    std::string title() const override { return windowTitle; }
    void setTitle(const std::string& text) override;
    Size clientSize() const override { return window.canvas().clientSize(); }
    double pixelScale() const override { return window.devicePixelRatioF(); }
    bool darkTheme() const override { return window.palette().window().color().lightness() < 128; }
    void setMenuBar(const std::string& name, const MenuBar& bar) override;
    void setMenuItem(int id, bool enabled, bool checked) override;
    void setToolBar(const std::vector<ToolButton>& buttons) override { window.setTools(buttons); }
    void showToolBar(bool shown) override { window.toolBar().setVisible(shown); }
    void openContextMenu(const std::vector<int>& commands) override;
    void searchCommands() override;
    void setStatusLine(const StatusLine& line) override { window.statusLine().tell(line); }
    void showStatusLine(bool shown) override { window.statusLine().setVisible(shown); }
    void note(const std::string& text) override { window.statusLine().tellLeft(text); }
    void setScrollBar(const ScrollBar& bar) override { window.showScrollBar(bar); }
    void requestPaint() override;
    void present(const Bitmap& shown) override;
    void requestClose() override;
    void destroyWindow() override;
    bool isWatched() const override { return true; }
    void nameBoxes(const std::string& name) override { boxName = name; }
    void message(const std::string& title, const std::string& text, Icon icon) override;
    Choice question(const std::string& title, const std::string& text, Buttons buttons,
                    Choice marked) override;
    std::optional<std::string> fileDialog(const FileRequest& request) override;
    DialogResult dialog(Dialog& dialog) override;
    void showBusy(const std::string& text) override;
    void showProgress(const std::string& text, double fraction) override;
    double workSeconds() const override { return clock.seconds(); }
    void beep() override;
    bool escapeDown() override;
    void openHelp(const std::string& chapter) override;
    void showPage(const std::string& pageTitle, const std::string& text) override;
    std::optional<Bitmap> clipboardBitmap() const override;
    void copyToClipboard(const Bitmap& copied) override;
    void drawText(Bitmap& drawn, int x, int y, const std::string& text, const Font& font,
                  std::uint32_t color) override;
    int desktopTextHeight() const override;
    int textWidth(const std::string& text, const Font& font) override;

  private:
    void send(const Event& event);
    void queue(const Event& event);
    void sendQueued();
    void beginWatch();
    void sendIdle();
    void endBySignal();
    static void endByExit();
    const QImage& currentPicture();
    HelpWindow& helpWindow();
    void letShow();
    const std::string& named(const std::string& title) const {
        return title.empty() ? boxName : title;
    }
    /// The owner of boxes: none while the window is not shown, so that they get a place of their
    /// own.
    QWidget* owner() { return window.isVisible() ? &window : nullptr; }

    const Program& program;
    InputFilter input;
    std::chrono::steady_clock::time_point lastLook{}; ///< when work last let events in
    Window window;
    ProgressStrip strip;
    WorkClock clock;
    std::unique_ptr<HelpWindow> help; ///< once it was wanted
    QLabel busy;                      ///< shows the last of the notices
    std::vector<std::string> notices;
    std::string windowTitle;
    std::string boxName;                  ///< the title of boxes without one
    std::optional<std::string> firstFile; ///< until the start event was sent
    QTimer idle;                          ///< runs out when the user rests
    int endSignal = 0;
    Folders folders;
    Bitmap bitmap; ///< holds the pixels of image
    QImage image;
    std::deque<Event> waiting;
    QEventLoop loop;
    int depth = 0;      ///< handlers that are running now, one inside the other
    int paintDepth = 0; ///< the depth at which the program takes paint events
    bool paintDue = true;
    bool open = false;
};

} // namespace polyfab
