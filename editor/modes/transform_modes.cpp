// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/modes/transform_modes.h"

#include "display/box.h"
#include "display/look.h"
#include "editor/commands/selection.h"
#include "editor/commands/transform_selected.h"
#include "editor/editor_state.h"
#include "editor/modes/point_drag.h"
#include "editor/modes/view_drag.h"
#include "geometry/affine.h"
#include "mesh/extent.h"
#include "mesh/face_angle.h"
#include "mesh/stale.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <utility>

namespace polyfab {
namespace {

constexpr double doubling = 100; ///< pixels of the desktop that double a size

/// A thousandfold at most in one drag, so that nothing shrinks to a point or flies off for good.
double factorOf(const Vec3& moved) {
    return std::exp2(
        std::clamp((moved.x + moved.z - moved.y) / (doubling * look.pixel), -10.0, 10.0));
}

/// About y, what faces the viewer moves to the right when the turn runs backwards.
double angleOf(int axis, const Vec3& moved) {
    return (axis == 1 ? -1 : 1) * radiansPerPixel / look.pixel * (moved.x + moved.y + moved.z);
}

/// Where the selected faces are transformed.
struct Frame {
    AffineMap axes; ///< world -> the axes along which they are
    Vec3 pivot;     ///< the middle of the faces along these axes, in the world

    /// A map along the axes, as a map of the world that keeps the pivot.
    AffineMap inWorld(const AffineMap& map) const {
        return about(pivot, product(inverseOf(axes), product(map, axes)));
    }
};

/// Where a world position goes.
using Placing = std::function<Vec3(const Vec3&)>;

/// The selected faces follow. Their normals do when the points follow a map.
class FacesDrag : public PointDrag {
  public:
    /// Tells how the points are placed for the movement since the press.
    using Follow = std::function<Placing(const Vec3& moved)>;

    /// What to say of that movement.
    using Tell = std::string (*)(const Vec3& moved);

    FacesDrag(const Event& press, Follow toFollow, Tell toTell)
        : PointDrag(pointsOfSelectedFaces()), way(press), follow(std::move(toFollow)),
          tell(toTell) {}

    [[nodiscard]] std::string said() const override {
        return tell != nullptr ? tell(moved) : PointDrag::said();
    }

    void move(const Event& event) override {
        moved += way.stepTo(event);
        placing = isZero(moved) ? AffineMap() : follow(moved); // rounding moves nothing either
        place(placing);
    }

  private:
    void pointsHaveMoved() override {
        if (const auto* map = placing.target<AffineMap>()) transformSelectedNormals(*OB, *map);
    }

    Way way;
    Vec3 moved;
    Follow follow;
    Tell tell; ///< null: how far the faces have moved
    Placing placing;
};

/// `follow` tells how points are placed, from the frame and the movement since the press.
template <typename Follow>
std::unique_ptr<Drag> dragFaces(const Event& press, const AffineMap& axes, Follow follow,
                                FacesDrag::Tell tell = nullptr) {
    const Extent extent = extentOfFaces(*OB, axes, true);
    if (extent.empty()) {
        platform().setTitle("no face is selected");
        return nullptr;
    }
    const Frame frame{axes, inverseOf(axes)(extent.middle())};
    return std::make_unique<FacesDrag>(
        press, [frame, follow](const Vec3& moved) { return follow(frame, moved); }, tell);
}

std::string inWords(const char* what, double number) {
    char text[64];
    std::snprintf(text, sizeof text, what, number);
    return text;
}

/// What a turn or a twist says of itself.
template <int axis>
std::string tellAngle(const Vec3& moved) {
    return inWords("by %.6g degrees", angleOf(axis, moved) * 180 / pi);
}

constexpr FacesDrag::Tell tellAngles[] = {tellAngle<0>, tellAngle<1>, tellAngle<2>};

std::unique_ptr<Drag> turn(const Event& press, int axis) {
    if (turnOptions.view) {
        return dragView(press, [axis](const Vec3& step) {
            turnView(axis, angleOf(axis, step), turnOptions.after);
        });
    }
    // An object's own axes are those of a screen that shows it upright.
    const AffineMap axes = turnOptions.after ? screenAxes() : scaling({1, -1, -1});
    return dragFaces(
        press, axes,
        [axis](const Frame& frame, const Vec3& moved) {
            return frame.inWorld(rotation(axis, angleOf(axis, moved)));
        },
        tellAngles[axis]);
}

/// Where a world position lies between the box's cut-offs: 0 left, 1 right.
double shareInBox(const Vec3& p, int axis) {
    const double left = along(box.left, axis);
    const double right = along(box.right, axis);
    return std::clamp((along(projection.toScreen(p), axis) - left) / (right - left), 0.0, 1.0);
}

std::unique_ptr<Drag> twist(const Event& press, int axis) {
    if (along(box.left, axis) == along(box.right, axis)) {
        platform().setTitle("the box has no extent along this axis");
        return nullptr;
    }
    return dragFaces(
        press, screenAxes(),
        [axis](const Frame& frame, const Vec3& moved) {
            const double whole = angleOf(axis, moved);
            return [=, back = inverseOf(frame.axes)](const Vec3& p) {
                const double angle = whole * shareInBox(p, axis);
                if (angle == 0) return p;
                return frame.pivot + back(rotation(axis, angle)(frame.axes(p - frame.pivot)));
            };
        },
        tellAngles[axis]);
}

std::unique_ptr<Drag> setCutoffs(const Event& press, Vec3& cutoffs) {
    const int rightStart = panesOf(view.client).rightStart;
    const int start = press.x >= rightStart ? rightStart : 0;
    return std::make_unique<ViewDrag>([start, &cutoffs](const Event& event) {
        // Now or before: the right button's press sets z at once, and its release still.
        const bool right = (editorState.buttons & 10) != 0;
        (right ? cutoffs.z : cutoffs.x) = event.x - start;
        cutoffs.y = event.y;
        stale.picture = true;
    });
}

} // namespace

std::unique_ptr<Drag> moveDisplay(const Event& press) { return dragView(press, panView); }

std::unique_ptr<Drag> scaleDisplay(const Event& press) {
    return dragView(press, [](const Vec3& step) { zoomView(factorOf(step), middleOfPanes()); });
}

std::unique_ptr<Drag> moveObjects(const Event& press) {
    return dragFaces(press, screenAxes(), [](const Frame& frame, const Vec3& moved) {
        const Vec3 pixels = inverseOf(frame.axes)(moved);
        AffineMap map;
        for (int i = 0; i < 3; ++i) map.row[i][3] = along(pixels, i) / view.scale;
        return map;
    });
}

std::unique_ptr<Drag> resizeObjects(const Event& press) {
    return dragFaces(
        press, screenAxes(),
        [](const Frame& frame, const Vec3& moved) {
            const double factor = factorOf(moved);
            if (editorState.resizeAxis == 0)
                return about(frame.pivot, scaling({factor, factor, factor}));
            Vec3 factors{1, 1, 1};
            along(factors, editorState.resizeAxis - 'X') = factor;
            return frame.inWorld(scaling(factors));
        },
        [](const Vec3& moved) { return inWords("by a factor of %.6g", factorOf(moved)); });
}

std::unique_ptr<Drag> turnAboutX(const Event& press) { return turn(press, 0); }
std::unique_ptr<Drag> turnAboutY(const Event& press) { return turn(press, 1); }
std::unique_ptr<Drag> turnAboutZ(const Event& press) { return turn(press, 2); }

std::unique_ptr<Drag> twistAboutX(const Event& press) { return twist(press, 0); }
std::unique_ptr<Drag> twistAboutY(const Event& press) { return twist(press, 1); }
std::unique_ptr<Drag> twistAboutZ(const Event& press) { return twist(press, 2); }

std::unique_ptr<Drag> setLeftCutoff(const Event& press) { return setCutoffs(press, box.left); }
std::unique_ptr<Drag> setRightCutoff(const Event& press) { return setCutoffs(press, box.right); }

} // namespace polyfab
