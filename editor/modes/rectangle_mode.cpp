// SPDX-License-Identifier: GPL-3.0-or-later
// One pass over the points tells on which sides of the rectangle each lies, one over the faces what
// that makes of them.
#include "editor/modes/rectangle_mode.h"

#include "display/options.h"
#include "editor/editor_state.h"
#include "editor/modes/combine.h"
#include "editor/modes/under_mouse.h"
#include "mesh/faces.h"
#include "picture/smooth.h"
#include "workbench/state.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace polyfab {
namespace {

// On which sides of the rectangle a point lies (Sutherland and Cohen's outcodes); 0: it is inside.
enum Side : std::uint8_t { isLeft = 1, isRight = 2, isAbove = 4, isBelow = 8, isNowhere = 16 };

class Rectangle {
  public:
    explicit Rectangle(const PaneRectangle& drawn)
        : across(drawn.left ? &Point::sx : &Point::sz), low{std::min(drawn.x0, drawn.x1),
                                                            std::min(drawn.y0, drawn.y1)},
          high{std::max(drawn.x0, drawn.x1), std::max(drawn.y0, drawn.y1)} {}

    [[nodiscard]] Place at(const Point& p) const { return {p.*across, p.sy}; }

    [[nodiscard]] std::uint8_t sidesOf(const Place& p) const {
        if (std::isnan(p.x) || std::isnan(p.y)) return isNowhere;
        return static_cast<std::uint8_t>((p.x < low.x ? isLeft : 0) | (p.x > high.x ? isRight : 0)
                                         | (p.y < low.y ? isAbove : 0)
                                         | (p.y > high.y ? isBelow : 0));
    }

    /// Whether the line between two places outside crosses it: not all its corners lie on one hand.
    [[nodiscard]] bool isCrossed(const Place& a, const Place& b) const {
        bool left = false, right = false;
        for (const Place& c : {low, Place{high.x, low.y}, high, Place{low.x, high.y}}) {
            const double hand = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
            left = left || hand >= 0;
            right = right || hand <= 0;
        }
        return left && right;
    }

    /// Whether its first corner lies in the outline of the face, by the even-odd rule.
    [[nodiscard]] bool isIn(const Face& face) const {
        bool inside = false;
        for (const FaceSide& side : sides(face)) {
            const Place a = at(*side.from.p), b = at(*side.to.p);
            if ((a.y <= low.y) == (b.y <= low.y)) continue;
            if (low.x < a.x + (b.x - a.x) * ((low.y - a.y) / (b.y - a.y))) inside = !inside;
        }
        return inside;
    }

  private:
    double Point::*across;
    Place low, high;
};

using Codes = std::vector<std::uint8_t>;

bool isInside(const Face& face, const Codes& codes) {
    return std::ranges::all_of(corners(face), [&](const FaceCorner& corner) {
        return codes[static_cast<std::size_t>(pointOf(*OB, corner))] == 0;
    });
}

bool isTouched(const Face& face, const Codes& codes, const Rectangle& rectangle) {
    const auto codeOf = [&](const FaceCorner& corner) {
        return codes[static_cast<std::size_t>(pointOf(*OB, corner))];
    };
    unsigned common = 0xFF;
    for (const FaceCorner& corner : corners(face)) {
        const unsigned code = codeOf(corner);
        if (code == 0) return true;
        if (code == isNowhere) return false;
        common &= code;
    }
    if (common != 0) return false; // wholly on one side
    for (const FaceSide& side : sides(face)) {
        if ((codeOf(side.from) & codeOf(side.to)) == 0
            && rectangle.isCrossed(rectangle.at(*side.from.p), rectangle.at(*side.to.p))) {
            return true;
        }
    }
    return rectangle.isIn(face);
}

void selectBy(const PaneRectangle& drawn, bool touched, Combine combine) {
    if (stale.points) transformPoints(*OB);
    const Rectangle rectangle(drawn);
    Codes codes(static_cast<std::size_t>(OB->np));
    std::transform(OB->points, OB->points + OB->np, codes.begin(),
                   [&](const Point& p) { return rectangle.sidesOf(rectangle.at(p)); });
    combineSelection(combine, [&](const Face& face) {
        return face.n > 0 && isShown(face, drawn.left)
               && (touched ? isTouched(face, codes, rectangle) : isInside(face, codes));
    });
}

class RectangleDrag : public Drag {
  public:
    RectangleDrag(const PanePlace& from, const Event& press)
        : start(press), touched((press.buttons & button::right) != 0), combine(combineByKeys()) {
        editorState.rectangle = {false, from.left, from.x, from.y, from.x, from.y};
    }
    ~RectangleDrag() override {
        editorState.rectangle.shown = false;
        stale.picture = true;
    }
    void move(const Event& event) override {
        PaneRectangle& drawn = editorState.rectangle;
        drawn.x1 = drawn.x0 + (event.x - start.x);
        drawn.y1 = drawn.y0 + (event.y - start.y);
        drawn.shown = drawn.shown || isDrag(event.x - start.x, event.y - start.y);
        stale.picture = true;
    }
    void finish() override {
        if (editorState.rectangle.shown) selectBy(editorState.rectangle, touched, combine);
    }

  private:
    Event start;
    bool touched;
    Combine combine;
};

} // namespace

std::unique_ptr<Drag> dragRectangle(const Event& press) {
    const auto place = pickingPlace(press);
    return place ? std::make_unique<RectangleDrag>(*place, press) : nullptr;
}

} // namespace polyfab
