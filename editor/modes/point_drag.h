// SPDX-License-Identifier: GPL-3.0-or-later
// Dragging points: they follow the mouse while a button is down, change the mesh once when it goes
// up, and are back where they stood when the user presses Escape before.
#pragma once

#include "editor/modes/drag.h"
#include "geometry/vec3.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace polyfab {

/// "by 1 in x, 0 in y, -0.25 in z".
[[nodiscard]] std::string byWay(const Vec3& way);

/// The drag of some points of OB; how they follow is for others to say.
class PointDrag : public Drag {
  public:
    /// Each point is named once. `dragging`: what they are, in words.
    PointDrag(std::vector<std::int32_t> dragged, std::string dragging);

    void finish() override;
    void cancel() override;
    /// How far the first of the points has moved.
    [[nodiscard]] std::string said() const override;

  protected:
    /// Puts every point where `to` maps the world position at which it stood when the drag began.
    void place(const std::function<Vec3(const Vec3&)>& to);

    std::string what; ///< "vertex 3"

  private:
    /// The drag has ended with a point at another position than before.
    virtual void pointsHaveMoved() {}

    std::vector<std::int32_t> points;
    std::vector<Vec3> start; ///< where they stood when the drag began
};

} // namespace polyfab
