// SPDX-License-Identifier: GPL-3.0-or-later
// Drags that change what is seen, and the steps that drags go by.
#pragma once

#include "display/box.h"
#include "display/view.h"
#include "editor/editor_state.h"
#include "editor/modes/drag.h"

#include <functional>
#include <numbers>
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

/// A drag that changes the view or the box.
class ViewDrag : public Drag {
  public:
    explicit ViewDrag(std::function<void(const Event&)> toFollow) : follow(std::move(toFollow)) {}

    void move(const Event& event) override { follow(event); }
    void cancel() override {
        view = viewBefore;
        box = boxBefore;
        applyView();
    }

  private:
    std::function<void(const Event&)> follow;
    View viewBefore = view;
    Box boxBefore = box;
};

/// `change` changes the view by a step.
template <typename Change>
std::unique_ptr<Drag> dragView(const Event& press, Change change) {
    return std::make_unique<ViewDrag>(
        [way = Way(press), change](const Event& event) mutable { change(way.stepTo(event)); });
}

} // namespace polyfab
