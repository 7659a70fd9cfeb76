// SPDX-License-Identifier: GPL-3.0-or-later
// A look at all input of the application before any widget gets it.
#pragma once

#include "platform/qt/keys.h"

#include <QObject>

#include <set>
#include <utility>

class QKeyEvent;

namespace polyfab {

/// Knows whether the Escape key is down, whichever widget its events go to, and keeps all input to
/// itself while the program works.
class InputFilter : public QObject {
  public:
    InputFilter();

    /// As the last key event of it has it, unless forgotten since.
    bool escapeDown() const { return escape; }
    /// Counts Escape as up until it is pressed anew: its release may go elsewhere, or its press was
    /// meant for a box.
    void forgetEscape() { escape = false; }

    /// No widget gets any input from the one to the other.
    void beginWork();
    void endWork() { working = false; }
    bool isWorking() const { return working; }
    /// Whether Escape went down since the last beginWork, even if not for long.
    bool escapePressed() const { return pressed; }
    /// The keys that went up meanwhile, each only once.
    std::set<KeyName> takeReleased() { return std::exchange(released, {}); }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void note(const QKeyEvent& event);

    bool escape = false;
    bool pressed = false;
    bool working = false;
    std::set<KeyName> released;
};

} // namespace polyfab
