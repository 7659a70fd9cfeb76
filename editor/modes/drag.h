// SPDX-License-Identifier: GPL-3.0-or-later
// Drags: what follows the mouse between the press of a button and its release.
#pragma once

#include "platform/platform.h"

#include <memory>
#include <string>

namespace polyfab {

/// One drag, made by the press that begins it, when that remembers what a cancel puts back. It
/// hears of the mouse until one of drop, finish and cancel ends it.
class Drag {
  public:
    virtual ~Drag() = default;

    /// The mouse is here, with a button down. The press is told too.
    virtual void move(const Event&) {}
    /// The button has gone up here.
    virtual void drop(const Event& event) {
        move(event);
        finish();
    }
    /// What was done so far stays.
    virtual void finish() {}
    /// Everything is as it was before the press.
    virtual void cancel() {}
    /// What it has done so far, for the status line, and for a note when it has ended; "": nothing
    /// to tell.
    [[nodiscard]] virtual std::string said() const { return ""; }
};

/// What the mouse does in a mode.
struct Press {
    /// These buttons have gone down: gives the drag that begins, or null after a mere click.
    std::unique_ptr<Drag> (*begin)(const Event&) = nullptr;
    /// The first of these to go down begins the drag, and the last to go up ends it.
    unsigned buttons = button::left;
    const char* step = ""; ///< what undo calls what comes of it; "": like the mode
};

inline constexpr unsigned anyButton = button::left | button::right;

/// What the buttons of the mouse are at.
struct Drags {
    /// From the press of the first button until all are up, or something ends it before.
    bool held = false;
    const char* step = "";          ///< what undo calls what was done since, as Press has it
    bool setsPoint = false;         ///< the left button went down to set a settable point
    std::unique_ptr<Drag> drag;     ///< what the mode makes of it; null: nothing
    std::unique_ptr<Drag> ofMiddle; ///< the drag with the middle button, or null
};

inline Drags drags;

/// Hands the mouse event to the drag that runs, or else to the press. To be called when the button
/// history is up to date.
void dragByMouse(const Event& event, const Press& press);

/// Whether a button that went down in the view is still down, and nothing has ended the drag.
[[nodiscard]] inline bool dragRuns() { return drags.held; }

/// Ends what runs, as if the buttons went up now; no mode hears of them until they are up.
void endDrag();

/// The same but for the middle button, and everything is back where it was at the press.
void cancelDrag();

/// No drag runs, whatever there was before.
inline void resetDrags() { drags = Drags(); }

} // namespace polyfab
