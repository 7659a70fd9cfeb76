// SPDX-License-Identifier: GPL-3.0-or-later
// Drags that change what is seen, and the steps that drags go by.
#pragma once

#include "display/box.h"
#include "display/view.h"
#include "editor/editor_state.h"
#include "editor/modes/drag.h"

#include <functional>
#include <numbers>
#include <string>
#include <utility>

namespace polyfab {

inline constexpr double radiansPerPixel = std::numbers::pi / 360; ///< of the desktop

/// The mouse on its way, in pixels along the screen's axes.
class Way {
  public:
    explicit Way(const Event& press) : x(press.x), y(press.y) {}

    /// From the event before to this one. The right button must have been down already for a
    /// movement to count along z, as for the mouse position.
    Vec3 stepTo(const Event& event) {
        const double across = event.x - std::exchange(x, event.x);
        const double down = event.y - std::exchange(y, event.y);
        const bool rightWasDown = (editorState.buttons & 8) != 0;
        return rightWasDown ? Vec3{0, down, across} : Vec3{across, down, 0};
    }

  private:
    int x, y; ///< client position of the event before
};

/// What to say of a drag that has moved so far, in pixels along the screen's axes.
using TellMoved = std::function<std::string(const Vec3& moved)>;

/// A drag that changes the view or the box.
class ViewDrag : public Drag {
  public:
    void cancel() override {
        view = viewBefore;
        box = boxBefore;
        applyView();
    }

  private:
    View viewBefore = view;
    Box boxBefore = box;
};

/// One that changes the view by steps.
class StepsDrag : public ViewDrag {
  public:
    StepsDrag(const Event& press, std::function<void(const Vec3&)> by, TellMoved toTell)
        : way(press), change(std::move(by)), tell(std::move(toTell)) {}

    void move(const Event& event) override {
        const Vec3 step = way.stepTo(event);
        moved += step;
        change(step);
    }
    [[nodiscard]] std::string said() const override { return isZero(moved) ? "" : tell(moved); }

  private:
    Way way;
    Vec3 moved;
    std::function<void(const Vec3&)> change;
    TellMoved tell;
};

} // namespace polyfab
