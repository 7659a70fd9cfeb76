// SPDX-License-Identifier: GPL-3.0-or-later
// The buttons above the client area.
#pragma once

#include "platform/platform.h"
#include "platform/qt/menus.h"

#include <QToolBar>

#include <functional>

namespace polyfab {

class ToolBar : public QToolBar {
  public:
    /// `toChoose` is told of the command whose button is pressed.
    explicit ToolBar(std::function<void(int command)> toChoose);

    void setButtons(const std::vector<ToolButton>& buttons);
    /// Shows each button as these actions are now: greyed without one, pressed where it is checked.
    void follow(const Actions& actions);
    /// The same when only this action may have changed.
    void followOne(const QAction& action);

  private:
    static void showLike(QAction& button, const QAction& followed);

    std::function<void(int command)> choose;
};

} // namespace polyfab
