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
#include "workbench/notes.h"

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

    /// What the drag does, and how far it has gone.
    struct Words {
        const char* verb;
        TellMoved howFar;
    };

    FacesDrag(const Event& press, Follow toFollow, Words toTell)
        : PointDrag(pointsOfSelectedFaces(), counted(editorState.faces.selected, "face")),
          way(press), follow(std::move(toFollow)), words(std::move(toTell)) {}

    [[nodiscard]] std::string said() const override {
        if (isZero(moved)) return "";
        return std::string(words.verb) + " " + what + " " + words.howFar(moved);
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
    Words words;
    Placing placing;
};

/// `follow` tells how points are placed, from the frame and the movement since the press.
template <typename Follow>
std::unique_ptr<Drag> dragFaces(const Event& press, const AffineMap& axes, Follow follow,
                                FacesDrag::Words words) {
    const Extent extent = extentOfFaces(*OB, axes, true);
    if (extent.empty()) {
        noteInTitle("no face is selected");
        return nullptr;
    }
    const Frame frame{axes, inverseOf(axes)(extent.middle())};
    return std::make_unique<FacesDrag>(
        press, [frame, follow](const Vec3& moved) { return follow(frame, moved); },
        std::move(words));
}

std::string inWords(const char* what, double number) {
    char text[64];
    std::snprintf(text, sizeof text, what, number);
    return text;
}

TellMoved tellAngle(int axis) {
    return [axis](const Vec3& moved) {
        const char* const words[] = {"about x by %.6g degrees", "about y by %.6g degrees",
                                     "about z by %.6g degrees"};
        return inWords(words[axis], angleOf(axis, moved) * 180 / pi);
    };
}

std::string tellFactor(const Vec3& moved) {
    return inWords("by a factor of %.6g", factorOf(moved));
}

/// The way in the world that is so many pixels on the screen.
Vec3 wayInWorld(const Vec3& pixels) {
    const Vec3 way = inverseOf(screenAxes())(pixels);
    return {way.x / view.scale, way.y / view.scale, way.z / view.scale};
}

std::unique_ptr<Drag> turn(const Event& press, int axis) {
    if (turnOptions.view) {
        return std::make_unique<StepsDrag>(
            press,
            [axis](const Vec3& step) { turnView(axis, angleOf(axis, step), turnOptions.after); },
            [axis](const Vec3& moved) { return "turned the picture " + tellAngle(axis)(moved); });
    }
    // An object's own axes are those of a screen that shows it upright.
    const AffineMap axes = turnOptions.after ? screenAxes() : scaling({1, -1, -1});
    return dragFaces(press, axes,
                     [axis](const Frame& frame, const Vec3& moved) {
                         return frame.inWorld(rotation(axis, angleOf(axis, moved)));
                     },
                     {"rotated", tellAngle(axis)});
}

/// Where a world position lies between the box's cut-offs: 0 left, 1 right.
double shareInBox(const Vec3& p, int axis) {
    const double left = along(box.left, axis);
    const double right = along(box.right, axis);
    return std::clamp((along(projection.toScreen(p), axis) - left) / (right - left), 0.0, 1.0);
}

std::unique_ptr<Drag> twist(const Event& press, int axis) {
    if (along(box.left, axis) == along(box.right, axis)) {
        noteInTitle("the box has no extent along this axis");
        return nullptr;
    }
    return dragFaces(press, screenAxes(),
                     [axis](const Frame& frame, const Vec3& moved) {
                         const double whole = angleOf(axis, moved);
                         return [=, back = inverseOf(frame.axes)](const Vec3& p) {
                             const double angle = whole * shareInBox(p, axis);
                             if (angle == 0) return p;
                             return frame.pivot
                                    + back(rotation(axis, angle)(frame.axes(p - frame.pivot)));
                         };
                     },
                     {"twisted", tellAngle(axis)});
}

/// Moves the cut-offs of one side of the box to where the mouse is.
class CutoffDrag : public ViewDrag {
  public:
    CutoffDrag(const Event& press, Vec3& toSet)
        : start(startOfPane(press.x)), cutoffs(toSet), before(toSet) {}

    void move(const Event& event) override {
        // Now or before: the right button's press sets z at once, and its release still.
        const bool right = (editorState.buttons & 10) != 0;
        (right ? cutoffs.z : cutoffs.x) = event.x - start;
        cutoffs.y = event.y;
        stale.picture = true;
    }
    [[nodiscard]] std::string said() const override {
        if (isZero(cutoffs - before)) return "";
        const Vec3 size = (box.right - box.left) * (1 / view.scale);
        char text[128];
        std::snprintf(text, sizeof text, "the box is %.6g x %.6g x %.6g", std::abs(size.x),
                      std::abs(size.y), std::abs(size.z));
        return text;
    }

  private:
    static int startOfPane(int x) {
        const int rightStart = panesOf(view.client).rightStart;
        return x >= rightStart ? rightStart : 0;
    }

    int start; ///< the column from which the pane's are counted
    Vec3& cutoffs;
    Vec3 before;
};

} // namespace

std::unique_ptr<Drag> moveDisplay(const Event& press) {
    return std::make_unique<StepsDrag>(press, panView, [](const Vec3& moved) {
        return "moved the picture " + byWay(wayInWorld(moved));
    });
}

std::unique_ptr<Drag> scaleDisplay(const Event& press) {
    return std::make_unique<StepsDrag>(
        press, [](const Vec3& step) { zoomView(factorOf(step), middleOfPanes()); },
        [](const Vec3& moved) { return "resized the picture " + tellFactor(moved); });
}

std::unique_ptr<Drag> moveObjects(const Event& press) {
    const auto follow = [](const Frame&, const Vec3& moved) {
        const Vec3 way = wayInWorld(moved);
        AffineMap map;
        for (int i = 0; i < 3; ++i) map.row[i][3] = along(way, i);
        return map;
    };
    return dragFaces(press, screenAxes(), follow,
                     {"moved", [](const Vec3& moved) { return byWay(wayInWorld(moved)); }});
}

std::unique_ptr<Drag> resizeObjects(const Event& press) {
    return dragFaces(press, screenAxes(),
                     [](const Frame& frame, const Vec3& moved) {
                         const double factor = factorOf(moved);
                         if (editorState.resizeAxis == 0)
                             return about(frame.pivot, scaling({factor, factor, factor}));
                         Vec3 factors{1, 1, 1};
                         along(factors, editorState.resizeAxis - 'X') = factor;
                         return frame.inWorld(scaling(factors));
                     },
                     {"resized", tellFactor});
}

std::unique_ptr<Drag> turnAboutX(const Event& press) { return turn(press, 0); }
std::unique_ptr<Drag> turnAboutY(const Event& press) { return turn(press, 1); }
std::unique_ptr<Drag> turnAboutZ(const Event& press) { return turn(press, 2); }

std::unique_ptr<Drag> twistAboutX(const Event& press) { return twist(press, 0); }
std::unique_ptr<Drag> twistAboutY(const Event& press) { return twist(press, 1); }
std::unique_ptr<Drag> twistAboutZ(const Event& press) { return twist(press, 2); }

std::unique_ptr<Drag> setLeftCutoff(const Event& press) {
    return std::make_unique<CutoffDrag>(press, box.left);
}
std::unique_ptr<Drag> setRightCutoff(const Event& press) {
    return std::make_unique<CutoffDrag>(press, box.right);
}

} // namespace polyfab
