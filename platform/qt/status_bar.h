// SPDX-License-Identifier: GPL-3.0-or-later
// The line at the bottom of the window.
#pragma once

#include "platform/platform.h"

#include <QLabel>
#include <QStatusBar>

namespace polyfab {

class StatusBar : public QStatusBar {
  public:
    StatusBar();

    void tell(const StatusLine& line);
    void tellLeft(const std::string& text);
    /// What it says now.
    StatusLine line() const;

  private:
    QLabel left, right;
};

} // namespace polyfab
