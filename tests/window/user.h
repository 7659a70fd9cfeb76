// SPDX-License-Identifier: GPL-3.0-or-later
// A user of the real window with the real editor in it, off screen: chooses from menus with the
// keyboard, answers boxes, moves the mouse, drops files.
#pragma once

#include "editor/window.h"
#include "platform/qt/qt_platform.h"
#include "tests/support/mesh_fixture.h"

#include <QPoint>
#include <QString>
#include <QTimer>

#include <deque>
#include <functional>
#include <string>

namespace polyfab::test {

class User : public testing::Test {
  protected:
    User();
    ~User() override;

    /// Opens the menu by Alt and this letter, then chooses by this letter within it.
    void menu(char bar, char item);
    /// Presses and releases a key in the window.
    void press(Qt::Key key, Qt::KeyboardModifiers held = {});
    void hold(Qt::Key key);
    void release(Qt::Key key);
    /// Mouse events at a position in device pixels of the canvas.
    void mouseDown(QPoint at, Qt::MouseButton button = Qt::LeftButton);
    void mouseUp(QPoint at, Qt::MouseButton button = Qt::LeftButton);
    void drop(const std::string& path);

    /// What the user will do with the next modal box; `act` gets it once it is open.
    void answer(std::function<void(QWidget& box)> act);
    /// The same by its button, or by the texts for its fields and Enter.
    void answerButton(const QString& label);
    void answerText(const QString& text);

    /// Lets everything that is queued come through; all answers must have been used then.
    void settle();

    QtPlatform backend{editorProgram()};
    Window& window = backend.mainWindow();

  private:
    void activate();

    std::deque<std::function<void(QWidget&)>> answers;
    QTimer answering;
};

} // namespace polyfab::test
