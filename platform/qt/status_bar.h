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
    StatusLine line() const { return said; }

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    /// Shows of both texts what there is room for, at least half of the line for the right one;
    /// what is cut ends in dots and stands whole in the tooltip.
    void fit();

    StatusLine said;
    QLabel left, right;
};

} // namespace polyfab
