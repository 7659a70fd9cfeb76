// SPDX-License-Identifier: GPL-3.0-or-later
// The grid, the axes and the names of the panes: straight off the projection, without the mesh.
#include "display/look.h"
#include "display/options.h"
#include "display/overlay.h"
#include "io/print_number.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

namespace polyfab {
namespace {

constexpr int mostLines = 1000; ///< more come only of a degenerate view

/// The power of ten, or 2 or 5 times one, that is nearest by ratio.
double roundStep(double wanted) {
    const double power = std::pow(10, std::floor(std::log10(wanted)));
    const double share = wanted / power;
    return power
           * (share < std::sqrt(2)    ? 1
              : share < std::sqrt(10) ? 2
              : share < std::sqrt(50) ? 5
                                      : 10);
}

/// Lowest and highest world coordinate along one axis of the grid's plane.
struct Range {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();

    void add(double value) {
        low = std::min(low, value);
        high = std::max(high, value);
    }
};

/// A plane through the origin in the pane: where the origin is and how far a unit along each of the
/// two axes leads.
struct Plane {
    Place origin;
    Place first;
    Place second;

    Place at(double a, double b) const {
        return {origin.x + a * first.x + b * second.x, origin.y + a * first.y + b * second.y};
    }
    /// The inverse of `at`.
    std::pair<double, double> coordinates(double x, double y) const {
        const double dx = x - origin.x;
        const double dy = y - origin.y;
        const double area = first.x * second.y - first.y * second.x;
        return {(dx * second.y - dy * second.x) / area, (first.x * dy - first.y * dx) / area};
    }
};

/// The plane whose own axis runs most nearly along the pane's depth.
Plane planeSeen(bool left) {
    const auto& row = projection.toScreen.row;
    const double* const across = row[left ? 0 : 2];
    const double* const down = row[1];
    const double* const depth = row[left ? 2 : 0];
    const auto nearer = [](double a, double b) { return std::abs(a) < std::abs(b); };
    const auto normal = std::max_element(depth, depth + 3, nearer) - depth;
    const auto a = (normal + 1) % 3;
    const auto b = (normal + 2) % 3;
    return {{across[3], down[3]}, {across[a], down[a]}, {across[b], down[b]}};
}

/// The lines of equal first coordinates, or of equal second ones, within both ranges.
void drawLines(const Pane& pane, const Plane& plane, double step, const Range& values,
               const Range& length, bool first) {
    const double start = std::ceil(values.low / step);
    const double count = std::floor(values.high / step) - start + 1;
    if (!(count <= mostLines)) return;
    for (int i = 0; i < count; ++i) {
        const double value = (start + i) * step;
        pane.line(first ? plane.at(value, length.low) : plane.at(length.low, value),
                  first ? plane.at(value, length.high) : plane.at(length.high, value), look.grid);
    }
}

/// The world's axes as they run on the screen, so long and from this place, with their letters.
void drawTriad(const Pane& pane, const Place& origin, double size, bool dashed, const Font& font) {
    constexpr const char* letters[] = {"x", "y", "z"};
    const Place world = pane.at(Vec3{});
    for (std::size_t i = 0; i < 3; ++i) {
        double unit[3] = {};
        unit[i] = size / view.scale;
        const Place tip = pane.at(Vec3{unit[0], unit[1], unit[2]});
        const Place way{tip.x - world.x, tip.y - world.y};
        Stroke stroke = look.axes[i];
        if (!dashed) stroke.pattern = Stroke::solid;
        pane.line(origin, {origin.x + way.x, origin.y + way.y}, stroke);
        const double length = std::hypot(way.x, way.y);
        if (length < look.shortAxis) continue;
        // The letter's middle lies beyond the end, in the axis's own direction.
        const double away = 1 + (look.textGap + font.height / 2.0) / length;
        const double right = origin.x + way.x * away;
        const double down = origin.y + way.y * away;
        drawLabel(pane,
                  {right - platform().textWidth(letters[i], font) / 2.0, down - font.height / 2.0},
                  letters[i], font, stroke.color);
    }
}

} // namespace

void drawGrid(const Pane& pane) {
    if (!displayOptions.grid) return;
    const double step = roundStep(look.gridStep / view.scale);
    const Plane plane = planeSeen(pane.left);
    Range firsts;
    Range seconds;
    for (const double x : {-1, pane.canvas.width}) {
        for (const double y : {-1, pane.canvas.height}) {
            const auto [a, b] = plane.coordinates(x, y);
            firsts.add(a);
            seconds.add(b);
        }
    }
    drawLines(pane, plane, step, firsts, seconds, true);
    drawLines(pane, plane, step, seconds, firsts, false);
    char text[numberRoom];
    const std::string label = "grid " + std::string(text, printG6(text, step, 0));
    const double down = pane.canvas.height - look.gridFont.height - look.textGap;
    drawLabel(pane, {double(look.textGap), down}, label, look.gridFont, look.gridText);
}

void drawAxes(const Pane& pane) {
    if (!displayOptions.axes) return;
    drawTriad(pane, pane.at(Vec3{}), look.axisLength, true, look.axisFont);
}

void drawPaneNames(const Mesh& mesh, const Pane& pane) {
    if (mesh.np == 0 && mesh.nf == 0 && pane.left) {
        const double middle = pane.canvas.height / 2.0;
        double down = middle - 1.5 * look.gridFont.height;
        for (const char* const line : {"nothing here yet: open a file (Ctrl+O), drop one on the",
                                       "window, or make an object with the make object menu"}) {
            const int width = platform().textWidth(line, look.gridFont);
            drawLabel(pane, {(pane.canvas.width - width) / 2.0, down}, line, look.gridFont,
                      look.gridText);
            down += 1.5 * look.gridFont.height;
        }
    }
    if (!displayOptions.paneNames) return;
    const Place name{double(look.textGap) * 2, double(look.textGap)};
    drawLabel(pane, name, pane.left ? "front" : "right side", look.gridFont, look.gridText);
    const double room = 2 * look.tripodLength; // for its letters, too
    if (pane.canvas.width < 4 * room || pane.canvas.height < 4 * room) return;
    const Place corner{pane.canvas.width - room, pane.canvas.height - room};
    drawTriad(pane, corner, look.tripodLength, false, look.gridFont);
}

} // namespace polyfab
