// SPDX-License-Identifier: GPL-3.0-or-later
// Draws every edge once in each pane. The points are first brought to pixels, eight bytes each, so
// that the edges' way through them stays in the processor's cache.
#include "display/wireframe.h"

#include "display/edge_list.h"
#include "display/raster.h"
#include "display/view.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <vector>

namespace polyfab {
namespace {

/// A point in pixels, with a bit for every pane side that it lies beyond.
struct PanePoint {
    std::int16_t x, y, z;
    std::uint16_t beyond;
};

// Bits of PanePoint::beyond.
constexpr unsigned leftPane = 0x33;  ///< left, right; above, below
constexpr unsigned rightPane = 0x3C; ///< front, back; above, below
constexpr unsigned tooFar = 0x40;    ///< a position that 16 bits cannot hold

struct Wireframe {
    Bitmap picture;
    DrawnEdges edges;
    std::vector<PanePoint> points;
};

Wireframe wireframe;

unsigned sidesBeyond(int position, int size) {
    return (position < 0 ? 1U : 0U) | (position >= size ? 2U : 0U);
}

/// Rounds to whole pixels; sets `far` for what 16 bits cannot hold, NaN included.
int roundPixel(double value, bool& far) {
    constexpr int bias = 1 << 15;
    if (!(std::abs(value) < bias - 1)) {
        far = true;
        return 0;
    }
    return static_cast<int>(value + (bias + 0.5)) - bias;
}

PanePoint panePoint(const Point& p, const Panes& panes) {
    bool far = false;
    const int x = roundPixel(p.sx, far);
    const int y = roundPixel(p.sy, far);
    const int z = roundPixel(p.sz, far);
    const unsigned beyond = sidesBeyond(x, panes.leftWidth) | sidesBeyond(z, panes.rightWidth) << 2
                            | sidesBeyond(y, panes.height) << 4;
    return {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
            static_cast<std::int16_t>(z), static_cast<std::uint16_t>(far ? tooFar : beyond)};
}

/// One pane: its part of the picture and which of the positions run across it.
struct Pane {
    Canvas canvas;
    unsigned sides; ///< the bits of PanePoint::beyond that count here
    std::int16_t PanePoint::*across;
    double Point::*exact; ///< the same before rounding
};

Pane makePane(Bitmap& picture, const Panes& panes, bool left) {
    const Canvas canvas{picture.pixels.data() + (left ? 0 : panes.rightStart),
                        left ? panes.leftWidth : panes.rightWidth, panes.height, picture.width};
    return left ? Pane{canvas, leftPane, &PanePoint::x, &Point::sx}
                : Pane{canvas, rightPane, &PanePoint::z, &Point::sz};
}

/// An edge that is not wholly inside the pane.
void drawCrossing(const Mesh& mesh, const Pane& pane, std::uint32_t from, std::uint32_t to,
                  std::uint32_t color) {
    const PanePoint& a = wireframe.points[from];
    const PanePoint& b = wireframe.points[to];
    if (((a.beyond | b.beyond) & tooFar) != 0) {
        const Point& p = mesh.points[from];
        const Point& q = mesh.points[to];
        drawLine(pane.canvas, p.*pane.exact, p.sy, q.*pane.exact, q.sy, color);
    } else if ((a.beyond & b.beyond & pane.sides) == 0) {
        drawClipped(pane.canvas, a.*pane.across, a.y, b.*pane.across, b.y, color);
    }
}

/// Draws the edges that have the selected bit, or those that have not.
void drawEdges(const Mesh& mesh, const Pane& pane, bool selected, std::uint32_t color) {
    const DrawnEdges& edges = wireframe.edges;
    const std::uint32_t wanted = selected ? DrawnEdges::selectedBit : 0;
    const Canvas canvas = pane.canvas;
    const auto across = pane.across;
    const unsigned outside = pane.sides | tooFar;
    const auto count = static_cast<std::uint32_t>(wireframe.points.size());
    const std::size_t last = edges.other.size() - 1;
    for (std::uint32_t i = 0; i < count; ++i) {
        const PanePoint a = wireframe.points[i];
        const std::uint32_t end = edges.first[i + 1];
        for (std::uint32_t k = edges.first[i]; k < end; ++k) {
            // In a mesh of no order the next points are far apart; they are called for in time.
            const std::uint32_t soon = edges.other[std::min<std::size_t>(k + 24, last)];
            __builtin_prefetch(&wireframe.points[soon & ~DrawnEdges::selectedBit]);
            if ((edges.other[k] & DrawnEdges::selectedBit) != wanted) continue;
            const std::uint32_t to = edges.other[k] & ~DrawnEdges::selectedBit;
            const PanePoint b = wireframe.points[to];
            if (((a.beyond | b.beyond) & outside) == 0) {
                drawInside(canvas, a.*across, a.y, b.*across, b.y, color);
            } else {
                drawCrossing(mesh, pane, i, to, color);
            }
        }
    }
}

/// An empty picture: the background and the line between the panes.
void clearPicture(Bitmap& picture, const Panes& panes) {
    picture.width = std::max(view.client.width, 0);
    picture.height = panes.height;
    picture.pixels.assign(static_cast<std::size_t>(picture.width)
                              * static_cast<std::size_t>(picture.height),
                          palette.background);
    if (picture.width == 0) return;
    for (auto i = static_cast<std::size_t>(panes.leftWidth); i < picture.pixels.size();
         i += static_cast<std::size_t>(picture.width)) {
        picture.pixels[i] = palette.divider;
    }
}

void draw(Mesh& mesh) {
    const Panes panes = panesOf(view.client);
    clearPicture(wireframe.picture, panes);
    if (wireframe.picture.pixels.empty()) return;
    wireframe.points.resize(static_cast<std::size_t>(mesh.np));
    std::transform(mesh.points, mesh.points + mesh.np, wireframe.points.begin(),
                   [&](const Point& p) { return panePoint(p, panes); });
    const DrawnEdges& edges = wireframe.edges;
    for (const bool left : {true, false}) {
        const Pane pane = makePane(wireframe.picture, panes, left);
        // Selected edges last, so that no other lies over them.
        if (edges.selected < edges.other.size()) {
            drawEdges(mesh, pane, false, palette.unselected);
        }
        if (edges.selected > 0) drawEdges(mesh, pane, true, palette.edge);
    }
}

/// Brings everything up to date. A list of edges made for another number of points would lead
/// outside the arrays, whatever the flags say.
void refresh(Mesh& mesh, Size client) {
    if (client.width != view.client.width || client.height != view.client.height) {
        resizeView(client);
    }
    if (stale.points) transformPoints(mesh);
    if (stale.edges || wireframe.edges.first.size() != static_cast<std::size_t>(mesh.np) + 1) {
        listEdges(mesh, wireframe.edges);
    }
    draw(mesh);
    stale = {false, false, false};
}

} // namespace

const Bitmap& drawPanes(Mesh& mesh, Size client) {
    const bool resized = client.width != view.client.width || client.height != view.client.height;
    if (!resized && !stale.points && !stale.edges && !stale.picture) {
        return wireframe.picture;
    }
    try {
        refresh(mesh, client);
    } catch (const std::bad_alloc&) {
        wireframe.picture = Bitmap();
        stale = Stale();
    }
    return wireframe.picture;
}

} // namespace polyfab
