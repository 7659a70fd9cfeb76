// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's two widgets: the frame with its menu bar, and the canvas that the program draws
// and that takes keys, mouse and drops. Both only turn toolkit events into records.
#pragma once

#include "platform/platform.h"
#include "platform/qt/keys.h"
#include "platform/qt/menus.h"
#include "platform/qt/status_bar.h"
#include "platform/qt/tool_bar.h"

#include <QImage>
#include <QMainWindow>
#include <QScrollBar>
#include <functional>

namespace polyfab {

/// Where the widgets deliver to.
struct WindowEvents {
    std::function<void(const Event&)> send;  ///< at once (a resize waits while a command runs)
    std::function<void(const Event&)> queue; ///< when no other event is being handled
    /// What the canvas shows now, painted first if that is due.
    std::function<const QImage&()> picture;
};

class Canvas : public QWidget {
  public:
    explicit Canvas(const WindowEvents& windowEvents);
    /// In device pixels.
    Size clientSize() const;

    // Of the keys the program knows what went through here; what happened to them elsewhere:
    /// Tells of the release of a key whose press was told.
    void keyWentUp(const KeyName& key);
    /// Tells whether Ctrl is down, if the program believes otherwise.
    void tellCtrl(bool isDown);
    /// The program takes all keys for released.
    void forgetKeys() { down.clear(); }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void sendMouse(const QMouseEvent& mouse, Qt::MouseButtons held);
    Qt::MouseButtons toldButtons; ///< as the last mouse event had them
    WindowEvents events;
    HeldKeys down; ///< as the program knows it
};

class Window : public QMainWindow {
  public:
    explicit Window(const WindowEvents& windowEvents);
    void showMenuBar(const MenuBar& shown);
    const MenuBar& shownMenuBar() const { return bar; }
    void showScrollBar(const ScrollBar& list);
    /// The action of this command, or null.
    QAction* action(int id) const { return actions.value(id); }
    void setItem(int id, bool enabled, bool checked);
    void setTools(const std::vector<ToolButton>& buttons);
    ToolBar& toolBar() const { return *tools; }
    /// Under the mouse.
    void openContextMenu(const std::vector<int>& commands);
    Canvas& canvas() const { return *pane; }
    StatusBar& statusLine() const { return *status; }

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    void tellOpening(QMenu& menu);
    void choose(int command);
    WindowEvents events;
    MenuBar bar;
    Actions actions;
    // Owned by the toolkit.
    Canvas* pane;
    QScrollBar* scroll;
    StatusBar* status;
    ToolBar* tools;
    int scrolledTo = 0; ///< as the program knows it
};

} // namespace polyfab
