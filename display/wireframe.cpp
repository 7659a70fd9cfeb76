// SPDX-License-Identifier: GPL-3.0-or-later
// Draws every edge once in each pane. The points are first brought to pixels, eight bytes each, so
// that the edges' way through them stays in the processor's cache.
#include "display/wireframe.h"

#include "display/backgrounds.h"
#include "display/edge_list.h"
#include "display/look.h"
#include "display/options.h"
#include "display/overlay.h"
#include "display/pane.h"
#include "display/pane_images.h"
#include "display/shaded_edges.h"
#include "display/shading.h"
#include "display/told.h"
#include "display/view.h"
#include "mesh/screen_positions.h"
#include "mesh/stale.h"
#include "picture/raster.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <vector>

namespace polyfab {
namespace {

/// A point in pixels; a position that 16 bits cannot hold is brought to the nearest that they can,
/// and one that is not a number is 0.
struct PanePoint {
    std::int16_t x, y, z;
    std::uint16_t outside;
};

// Bits of PanePoint::outside.
constexpr unsigned ofLeft = 1;  ///< not in the left pane
constexpr unsigned ofRight = 2; ///< not in the right one
constexpr unsigned tooFar = 4;  ///< the pixels are not where the point is

/// What is up to date in the list of edges: panes that are all shaded leave it as it is.
enum class Listed : std::uint8_t { nothing, edges, all };

struct Wireframe {
    Bitmap picture;
    DrawnEdges edges;
    Listed listed = Listed::nothing;
    std::vector<PanePoint> points;
    bool isDraft = false;
    double fullSeconds = 0; ///< what drawing took in the last picture that was no draft
};

Wireframe wireframe;

/// Rounds to whole pixels; sets `far` for what 16 bits cannot hold, NaN included.
int roundPixel(double value, bool& far) {
    constexpr int bias = 1 << 15;
    if (!(std::abs(value) < bias - 1)) {
        far = true;
        return std::isnan(value) ? 0 : value < 0 ? 1 - bias : bias - 1;
    }
    return static_cast<int>(value + (bias + 0.5)) - bias;
}

PanePoint panePoint(const Point& p, const Panes& panes) {
    bool far = false;
    const int x = roundPixel(p.sx, far);
    const int y = roundPixel(p.sy, far);
    const int z = roundPixel(p.sz, far);
    const auto within = [](int position, int size) { return position >= 0 && position < size; };
    const bool high = within(y, panes.height);
    const unsigned outside = (high && within(x, panes.leftWidth) ? 0 : ofLeft)
                             | (high && within(z, panes.rightWidth) ? 0 : ofRight)
                             | (far ? tooFar : 0);
    return {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
            static_cast<std::int16_t>(z), static_cast<std::uint16_t>(outside)};
}

/// Edges that are drawn alike: those that have just the marks `value` of those in `mask`.
struct Layer {
    const Stroke& stroke;
    unsigned mask;
    unsigned value;
};

/// Whether both ends of a stroke lie beyond the same side of the pane.
bool isBeside(const Pane& pane, const PanePoint& a, const PanePoint& b, int width) {
    const auto across = pane.left ? &PanePoint::x : &PanePoint::z;
    const auto beyondSide = [reach = width / 2](int p, int q, int size) {
        return std::max(p, q) < -reach || std::min(p, q) >= size + reach;
    };
    return beyondSide(a.*across, b.*across, pane.canvas.width)
           || beyondSide(a.y, b.y, pane.canvas.height);
}

/// An edge that is not wholly inside the pane, or wider than a pixel.
void drawCrossing(const Mesh& mesh, const Pane& pane, std::uint32_t from, std::uint32_t to,
                  const Stroke& stroke) {
    const PanePoint& a = wireframe.points[from];
    const PanePoint& b = wireframe.points[to];
    const auto across = pane.left ? &PanePoint::x : &PanePoint::z;
    if (isBeside(pane, a, b, stroke.width)) return;
    if (((a.outside | b.outside) & tooFar) != 0) {
        pane.line(pane.at(mesh.points[from]), pane.at(mesh.points[to]), stroke);
    } else {
        drawClipped(pane.canvas, a.*across, a.y, b.*across, b.y, stroke);
    }
}

/// Calls use(from, to) for the edges of which at least some may lie in the pane.
template <typename Use>
void forEachInView(const Pane& pane, const Layer& layer, Use use) {
    const DrawnEdges& edges = wireframe.edges;
    for (std::uint32_t i = 0; i + 1 < edges.first.size(); ++i) {
        for (std::uint32_t k = edges.first[i]; k < edges.first[i + 1]; ++k) {
            if ((edges.marks[k] & layer.mask) != layer.value) continue;
            const PanePoint &a = wireframe.points[i], &b = wireframe.points[edges.other[k]];
            if (!isBeside(pane, a, b, layer.stroke.width + 1) && !use(i, edges.other[k])) return;
        }
    }
}

/// Whether smooth lines would take too long, in both panes together. It is a count and no clock
/// that decides, so that a picture is the same everywhere.
bool hasTooManyEdges() {
    constexpr std::uint32_t most = 200'000;
    if (wireframe.edges.other.size() <= most / 2) return false;
    std::uint32_t count = 0;
    for (const bool left : {true, false}) {
        if (isRendered(left)) continue;
        const unsigned shown = left ? edgemark::inLeft : edgemark::inRight;
        forEachInView(makePane(wireframe.picture, left), {look.selected, shown, shown},
                      [&count](auto, auto) { return ++count <= most; });
    }
    return count > most;
}

void drawEdges(const Mesh& mesh, const Pane& pane, const Layer& layer) {
    const DrawnEdges& edges = wireframe.edges;
    if (!edges.has(layer.mask, layer.value)) return;
    if (pane.smooth) {
        return forEachInView(pane, layer, [&](std::uint32_t from, std::uint32_t to) {
            pane.line(pane.at(mesh.points[from]), pane.at(mesh.points[to]), layer.stroke);
            return true;
        });
    }
    const Canvas canvas = pane.canvas;
    const Stroke stroke = layer.stroke;
    const bool thin = stroke.width == 1;
    const bool dashed = stroke.pattern != Stroke::solid;
    const auto across = pane.left ? &PanePoint::x : &PanePoint::z;
    const unsigned outside = (pane.left ? ofLeft : ofRight) | tooFar;
    const auto count = static_cast<std::uint32_t>(wireframe.points.size());
    const std::size_t last = edges.other.size() - 1;
    for (std::uint32_t i = 0; i < count; ++i) {
        const PanePoint a = wireframe.points[i];
        const std::uint32_t end = edges.first[i + 1];
        for (std::uint32_t k = edges.first[i]; k < end; ++k) {
            // In a mesh of no order the next points are far apart; they are called for in time.
            __builtin_prefetch(&wireframe.points[edges.other[std::min<std::size_t>(k + 24, last)]]);
            if ((edges.marks[k] & layer.mask) != layer.value) continue;
            const std::uint32_t to = edges.other[k];
            const PanePoint b = wireframe.points[to];
            if (!thin || ((a.outside | b.outside) & outside) != 0) {
                drawCrossing(mesh, pane, i, to, stroke);
            } else if (dashed) {
                drawInside<true>(canvas, a.*across, a.y, b.*across, b.y, stroke);
            } else {
                drawInside<false>(canvas, a.*across, a.y, b.*across, b.y, stroke);
            }
        }
    }
}

/// Each layer over those before it: what is selected or out of order is not covered.
void drawLayers(const Mesh& mesh, const Pane& pane) {
    const DisplayOptions& options = displayOptions;
    const unsigned shown = pane.left ? edgemark::inLeft : edgemark::inRight;
    const auto draw = [&](const Stroke& stroke, unsigned mark, unsigned value) {
        drawEdges(mesh, pane, {stroke, shown | mark, shown | value});
    };
    draw(options.unselectedGrey ? look.unselectedGrey : look.unselected, edgemark::selected, 0);
    draw(look.selected, edgemark::selected, edgemark::selected);
    if (options.looseEdges) draw(look.loose, edgemark::shared, 0);
    if (options.badEdges) draw(look.bad, edgemark::bad, edgemark::bad);
}

/// An empty picture: the background and the line between the panes.
void clearPicture(Bitmap& picture, const Panes& panes) {
    picture.width = std::max(view.client.width, 0);
    picture.height = panes.height;
    picture.pixels.assign(static_cast<std::size_t>(picture.width)
                              * static_cast<std::size_t>(picture.height),
                          look.background);
    if (picture.width == 0) return;
    for (auto i = static_cast<std::size_t>(panes.leftWidth); i < picture.pixels.size();
         i += static_cast<std::size_t>(picture.width)) {
        picture.pixels[i] = look.divider;
    }
}

/// Of the edges, those that are marked show through no face.
void drawMarkedEdges(const Mesh& mesh, const Pane& pane) {
    const unsigned shown = pane.left ? edgemark::inLeft : edgemark::inRight;
    const auto draw = [&](const Stroke& stroke, unsigned mark, unsigned value) {
        const Layer layer{stroke, shown | mark, shown | value};
        if (!wireframe.edges.has(layer.mask, layer.value)) return;
        forEachInView(pane, layer, [&](std::uint32_t from, std::uint32_t to) {
            drawSeenLine(pane, mesh.points[from], mesh.points[to], stroke);
            return true;
        });
    };
    if (displayOptions.looseEdges) draw(look.loose, edgemark::shared, 0);
    if (displayOptions.badEdges) draw(look.bad, edgemark::bad, edgemark::bad);
}

/// Of a picture that is clear.
void fillPane(const Pane& pane) {
    if (displayOptions.renderBackground) {
        const std::uint32_t color = 0xFF000000 | *displayOptions.renderBackground;
        fillRectangle(pane.picture, pane.start, 0, {pane.canvas.width, pane.canvas.height}, color);
    }
    drawBackground(pane);
}

void drawSurfaces(const Mesh& mesh, const Pane& pane) {
    drawShaded(mesh, pane);
    if (displayOptions.renderedEdges) drawFaceEdges(mesh, pane);
}

void drawSolid(const Mesh& mesh, const Pane& pane) {
    fillPane(pane);
    drawGrid(pane);
    drawSurfaces(mesh, pane);
    drawTint(mesh, pane);
    drawMarkedEdges(mesh, pane);
}

void drawWires(const Mesh& mesh, const Pane& pane) {
    drawBackground(pane);
    drawGrid(pane);
    drawTint(mesh, pane);
    drawLayers(mesh, pane);
}

bool needsEdges() {
    const DisplayOptions& options = displayOptions;
    return !options.renderLeft || !options.renderRight || options.badEdges || options.looseEdges;
}

void draw(Mesh& mesh, const Markers& markers) {
    const Panes panes = panesOf(view.client);
    clearPicture(wireframe.picture, panes);
    if (wireframe.picture.pixels.empty()) return;
    if (needsEdges()) {
        wireframe.points.resize(static_cast<std::size_t>(mesh.np));
        std::transform(mesh.points, mesh.points + mesh.np, wireframe.points.begin(),
                       [&](const Point& p) { return panePoint(p, panes); });
    }
    const bool tooMany = displayOptions.smoothLines && hasTooManyEdges();
    for (const bool left : {true, false}) {
        Pane pane = makePane(wireframe.picture, left);
        const bool solid = isRendered(left);
        pane.smooth = displayOptions.smoothLines && (solid || !tooMany);
        solid ? drawSolid(mesh, pane) : drawWires(mesh, pane);
        drawOverlay(mesh, pane, markers);
        drawPaneNames(mesh, pane);
    }
}

/// Makes ready what shaded panes need; without any it gives back what they had.
void refreshShading(const Mesh& mesh, const Markers& markers) {
    constexpr double slow = 0.05; // seconds
    const bool shades = isRendered(true) || isRendered(false);
    wireframe.isDraft = shades && markers.dragging && wireframe.fullSeconds > slow;
    if (shades) {
        prepareShading(mesh, stale, wireframe.isDraft);
    } else {
        forgetShading();
    }
}

void refreshEdges(const Mesh& mesh) {
    if (wireframe.listed == Listed::all) return;
    wireframe.listed == Listed::edges ? markSelected(mesh, wireframe.edges)
                                      : listEdges(mesh, wireframe.edges);
    wireframe.listed = Listed::all;
}

/// Brings everything up to date. A list of edges made for another number of points would lead
/// outside the arrays, whatever the flags say. Which faces are hidden changes with the points.
void refresh(Mesh& mesh, Size client, const Markers& markers) {
    if (client.width != view.client.width || client.height != view.client.height) {
        resizeView(client);
    }
    if (stale.points) transformPoints(mesh);
    stale.edges |= stale.points && displayOptions.hideFacingAway;
    if (stale.edges || wireframe.edges.first.size() != static_cast<std::size_t>(mesh.np) + 1) {
        wireframe.listed = Listed::nothing;
    } else if (stale.selection && wireframe.listed == Listed::all) {
        wireframe.listed = Listed::edges;
    }
    if (needsEdges()) refreshEdges(mesh);
    updateLook();
    refreshShading(mesh, markers);
    // What is made ready is ready for many pictures, and no draft would be quicker there.
    const double start = platform().workSeconds();
    draw(mesh, markers);
    if (!wireframe.isDraft) wireframe.fullSeconds = platform().workSeconds() - start;
    stale = {false, false, false, false};
}

/// The columns of rendered panes.
Bitmap withoutWires(Bitmap& whole) {
    Bitmap kept{0, whole.height, {}};
    for (const bool left : {true, false}) {
        if (isRendered(left)) kept.width += makePane(whole, left).canvas.width;
    }
    for (int y = 0; y < whole.height; ++y) {
        for (const bool left : {true, false}) {
            const Canvas canvas = makePane(whole, left).canvas;
            const std::uint32_t* const row = canvas.pixels + y * canvas.stride;
            if (isRendered(left)) kept.pixels.insert(kept.pixels.end(), row, row + canvas.width);
        }
    }
    return kept;
}

/// Without memory for shaded panes there are wires.
bool giveUpShading() {
    if (!isRendered(true) && !isRendered(false)) return false;
    displayOptions.renderLeft = displayOptions.renderRight = false;
    forgetShading();
    toldByDisplay.emplace_back("I can't get enough memory to render");
    return true;
}

} // namespace

const Bitmap& drawPanes(Mesh& mesh, Size client, const Markers& markers) {
    const bool resized = client.width != view.client.width || client.height != view.client.height;
    if (!resized && !stale.points && !stale.edges && !stale.picture) {
        return wireframe.picture;
    }
    try {
        refresh(mesh, client, markers);
    } catch (const std::bad_alloc&) {
        stale = Stale();
        if (giveUpShading()) return drawPanes(mesh, client, markers);
        wireframe.picture = Bitmap();
    }
    return wireframe.picture;
}

Bitmap renderedPanes(Mesh& mesh) {
    if (stale.points) transformPoints(mesh);
    updateLook();
    prepareShading(mesh, stale, false);
    Bitmap whole;
    clearPicture(whole, panesOf(view.client));
    for (const bool left : {true, false}) {
        if (!isRendered(left) || whole.pixels.empty()) continue;
        const Pane pane = makePane(whole, left);
        fillPane(pane);
        drawSurfaces(mesh, pane);
    }
    return withoutWires(whole);
}

bool pictureIsDraft() { return wireframe.isDraft; }

} // namespace polyfab
