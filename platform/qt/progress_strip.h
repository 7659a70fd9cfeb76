// SPDX-License-Identifier: GPL-3.0-or-later
// The strip along the bottom of the window that tells how far long work is.
#pragma once

#include <QString>
#include <QWidget>

namespace polyfab {

class ProgressStrip : public QWidget {
  public:
    /// Lies over the bottom of the owner while it is visible.
    explicit ProgressStrip(QWidget* owner);

    /// Draws itself at once, as wide as the owner is now. `fraction` is 0 to 1, or below 0 for a
    /// bar that moves on with each call.
    void tell(const QString& newText, double newFraction);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QString text;
    double fraction = 0;
    int moves = 0; ///< of the moving bar
};

} // namespace polyfab
