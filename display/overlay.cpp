// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/overlay.h"

#include "display/box.h"
#include "display/edge_list.h"
#include "display/look.h"
#include "display/options.h"
#include "display/shaded_edges.h"
#include "mesh/face_area.h"
#include "mesh/faces.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace polyfab {
namespace {

constexpr std::size_t mostNumbers = 2000; ///< of more in a pane hardly any could be read

/// Calls use(face) for the faces that the pane shows.
template <typename Use>
void forEachShown(const Mesh& mesh, const Pane& pane, Use use) {
    for (const Face& face : allFaces(mesh)) {
        if (isSound(mesh, face) && isShown(face, pane.left)) use(face);
    }
}

/// The middle of the corners on the screen.
Point middleOf(const Face& face) {
    Point middle{};
    const double share = 1.0 / face.n;
    for (const FaceCorner& corner : corners(face)) {
        middle.sx += corner.p->sx * share;
        middle.sy += corner.p->sy * share;
        middle.sz += corner.p->sz * share;
    }
    return middle;
}

bool reachesPane(const Pane& pane, const Point& from) {
    return pane.shows(pane.at(from), look.normalLength);
}

void drawNormal(const Pane& pane, const Point& from, const Vec3& normal) {
    double length = std::sqrt(dot(normal, normal));
    if (!(length > 1e-100 && length < 1e100)) {
        length = std::hypot(normal.x, normal.y, normal.z); // squares may vanish or overflow
        if (!(length > 0)) return;
    }
    const double factor = look.normalLength / view.scale / length;
    const auto move = [&](const double(&row)[4]) {
        return (row[0] * normal.x + row[1] * normal.y + row[2] * normal.z) * factor;
    };
    const auto& rows = projection.toScreen.row;
    const Place start = pane.at(from);
    pane.line(start, {start.x + move(rows[pane.left ? 0 : 2]), start.y + move(rows[1])},
              look.normal);
}

/// The normals that corners have stand on their points; a face without any has its own.
void drawNormals(const Mesh& mesh, const Pane& pane) {
    forEachShown(mesh, pane, [&](const Face& face) {
        bool onCorners = false;
        for (const FaceCorner& corner : corners(face)) {
            if (corner.d == nullptr) continue;
            onCorners = true;
            const Normal& normal = *corner.d;
            if (!reachesPane(pane, *corner.p)) continue;
            drawNormal(pane, *corner.p, {normal.x, normal.y, normal.z});
        }
        if (onCorners) return;
        const Point middle = middleOf(face);
        if (reachesPane(pane, middle)) drawNormal(pane, middle, scaledArea(face));
    });
}

// What faces make of a point.
constexpr unsigned used = 1;     ///< a corner of a live face
constexpr unsigned shown = 2;    ///< of one that the pane shows
constexpr unsigned selected = 4; ///< of a selected one

/// Per point, these bits; of a point that only hidden faces use, none but `used`.
std::vector<unsigned char> pointUses(const Mesh& mesh, const Pane& pane) {
    std::vector<unsigned char> uses(static_cast<std::size_t>(mesh.np), 0);
    for (const Face& face : allFaces(mesh)) {
        if (!isSound(mesh, face)) continue;
        const unsigned bits =
            !isShown(face, pane.left) ? used : used | shown | (face.selected != 0 ? selected : 0);
        for (const FaceCorner& corner : corners(face)) {
            auto& use = uses[static_cast<std::size_t>(pointOf(mesh, corner))];
            use = static_cast<unsigned char>(use | bits);
        }
    }
    return uses;
}

/// Whether the pane shows a point: not if it belongs to hidden faces only.
bool isPointShown(unsigned uses) { return uses == 0 || (uses & shown) != 0; }

void drawSquare(const Pane& pane, const Place& at, bool filled) {
    const int radius = look.squareRadius;
    if (!pane.shows(at, radius)) return;
    const int x = static_cast<int>(std::floor(at.x + 0.5));
    const int y = static_cast<int>(std::floor(at.y + 0.5));
    const auto line = [&](int left, int top, int right, int bottom, const Stroke& stroke) {
        drawClipped(pane.canvas, x + left, y + top, x + right, y + bottom, stroke);
    };
    if (filled) return line(-radius, 0, radius, 0, {look.vertex.color, 2 * radius + 1});
    line(-radius, -radius, radius, -radius, look.vertex);
    line(-radius, radius, radius, radius, look.vertex);
    line(-radius, -radius, -radius, radius, look.vertex);
    line(radius, -radius, radius, radius, look.vertex);
}

void drawVertexes(const Mesh& mesh, const Pane& pane, const std::vector<unsigned char>& uses) {
    for (int i = 0; i < mesh.np; ++i) {
        const unsigned use = uses[static_cast<std::size_t>(i)];
        const bool filled = displayOptions.selectedVertexes && (use & selected) != 0;
        if (filled || (displayOptions.vertexes && isPointShown(use))) {
            drawSquare(pane, pane.at(mesh.points[i]), filled);
        }
    }
}

/// A number that would stand in the pane.
struct Number {
    Place at;
    double depth; ///< the lower, the nearer to the viewer
    std::string text;
};

/// The numbers of the elements for which where(i, p) fills p with a position, nearest first; none
/// when they are too many.
template <typename Where>
std::vector<Number> gatherNumbers(const Pane& pane, int n, Where where) {
    std::vector<Number> numbers;
    for (int i = 0; i < n; ++i) {
        Point p{};
        if (!where(i, p) || !pane.shows(pane.at(p))) continue;
        if (numbers.size() == mostNumbers) return {};
        const double depth = pane.left ? p.sz : -p.sx;
        if (std::isnan(depth)) continue; // has no order
        numbers.push_back({pane.at(p), depth, std::to_string(i + 1)});
    }
    std::stable_sort(numbers.begin(), numbers.end(),
                     [](const Number& a, const Number& b) { return a.depth < b.depth; });
    return numbers;
}

/// Writes numbers so that none lies over another.
class Writer {
  public:
    explicit Writer(const Pane& shownPane) : pane(shownPane) {}

    /// The text at its place, moved by so many of its widths and heights and then so many pixels.
    void write(const Number& number, double shift, int gap, const Font& font, std::uint32_t color) {
        const double width = platform().textWidth(number.text, font);
        const Place at{number.at.x + shift * width + gap, number.at.y + shift * font.height + gap};
        const auto covers = [&](const Span& other) {
            return at.x < other.end + 2 && other.at.x < at.x + width + 2
                   && std::abs(other.at.y - at.y) < font.height;
        };
        if (std::any_of(taken.begin(), taken.end(), covers)) return;
        taken.push_back({at, at.x + width});
        // The lines under it would make it hard to read.
        const double middle = at.y + font.height / 2.0;
        pane.line({at.x, middle}, {at.x + width - 1, middle}, {look.background, font.height});
        drawLabel(pane, at, number.text, font, color);
    }

  private:
    /// A line of text, from its upper left corner to this column.
    struct Span {
        Place at;
        double end;
    };
    const Pane& pane;
    std::vector<Span> taken;
};

void drawNumbers(const Mesh& mesh, const Pane& pane, const std::vector<unsigned char>& uses) {
    Writer writer(pane);
    const auto middle = [&](int i, Point& p) {
        const Face& face = mesh.faces[i];
        if (!isSound(mesh, face) || !isShown(face, pane.left)) return false;
        p = middleOf(face);
        return true;
    };
    for (const Number& number : gatherNumbers(pane, mesh.nf, middle)) {
        writer.write(number, -0.5, 0, look.faceFont, look.faceNumber);
    }
    const auto point = [&](int i, Point& p) {
        p = mesh.points[i];
        return isPointShown(uses[static_cast<std::size_t>(i)]);
    };
    for (const Number& number : gatherNumbers(pane, mesh.np, point)) {
        writer.write(number, 0, look.squareRadius + 1, look.numberFont, look.vertexNumber);
    }
}

void drawBox(const Pane& pane) {
    const auto [x0, x1] =
        pane.left ? std::minmax(box.left.x, box.right.x) : std::minmax(box.left.z, box.right.z);
    const auto [y0, y1] = std::minmax(box.left.y, box.right.y);
    // A pixel off, so that it does not cover the edges that it was fitted to.
    const double off = look.pixel;
    const Place low{x0 - off, y0 - off}, high{x1 + off, y1 + off};
    pane.line(low, {high.x, low.y}, look.box);
    pane.line({low.x, high.y}, high, look.box);
    pane.line(low, {low.x, high.y}, look.box);
    pane.line({high.x, low.y}, high, look.box);
}

void drawRectangle(const Pane& pane, const PaneRectangle& drawn) {
    constexpr unsigned share = 24; // of 256
    if (!drawn.shown || drawn.left != pane.left) return;
    const Place corners[] = {
        {drawn.x0, drawn.y0}, {drawn.x1, drawn.y0}, {drawn.x1, drawn.y1}, {drawn.x0, drawn.y1}};
    tintPolygon(pane.canvas, corners, look.currentFace.color, share);
    for (std::size_t i = 0; i < 4; ++i)
        pane.line(corners[i], corners[(i + 1) % 4], {look.settable.color});
}

/// The face of this index if it is there and sound.
const Face* soundFace(const Mesh& mesh, int index) {
    if (index < 0 || index >= mesh.nf || !isSound(mesh, mesh.faces[index])) return nullptr;
    return &mesh.faces[index];
}

/// Where a shaded pane shows edges, what faces hide of one is hidden.
void drawSide(const Pane& pane, const FaceCorner& from, const FaceCorner& to,
              const Stroke& stroke) {
    if (isRendered(pane.left) && displayOptions.renderedEdges) {
        drawSeenLine(pane, *from.p, *to.p, stroke);
    } else {
        pane.line(pane.at(*from.p), pane.at(*to.p), stroke);
    }
}

/// The current face, edge and vertex; but for edges on shaded panes even where they are hidden.
void drawCurrent(const Mesh& mesh, const Pane& pane, const Markers& markers) {
    if (const Face* const face = soundFace(mesh, mesh.curface)) {
        for (const auto& [from, to] : sides(*face)) drawSide(pane, from, to, look.currentFace);
    }
    const Face* const face = soundFace(mesh, markers.edgeFace);
    if (face != nullptr && markers.edgeCorner >= 0 && markers.edgeCorner < face->n) {
        drawSide(pane, face->q[markers.edgeCorner], cornerAfter(*face, markers.edgeCorner),
                 look.currentEdge);
    }
    if (mesh.curvertex < 0 || mesh.curvertex >= mesh.np) return;
    const Place at = pane.at(mesh.points[mesh.curvertex]);
    const Place tips[] = {{at.x - look.diamondRadius, at.y},
                          {at.x, at.y - look.diamondRadius},
                          {at.x + look.diamondRadius, at.y},
                          {at.x, at.y + look.diamondRadius}};
    for (std::size_t i = 0; i < 4; ++i) pane.line(tips[i], tips[(i + 1) % 4], look.currentVertex);
}

/// The corners of a new face, numbered in their order, and its sides but for the one that closes
/// it.
void drawNewCorners(const Mesh& mesh, const Pane& pane, std::span<const std::int32_t> corners) {
    const Point* last = nullptr;
    int number = 0;
    for (const std::int32_t point : corners) {
        if (point >= mesh.np) return;
        const Place at = pane.at(mesh.points[point]);
        const double radius = look.diamondRadius / 2;
        pane.line({at.x - radius, at.y}, {at.x + radius, at.y},
                  {look.preview.color, static_cast<int>(2 * radius)});
        if (last != nullptr) pane.line(pane.at(*last), at, {look.preview.color});
        last = mesh.points + point;
        drawLabel(pane, {at.x + look.diamondRadius, at.y - 1.2 * look.settableFont.height},
                  std::to_string(++number), look.settableFont, look.preview.color);
    }
}

void drawSettable(const Pane& pane, const std::array<Vec3, 2>& points) {
    const auto atOrigin = [](const Vec3& p) { return p.x == 0 && p.y == 0 && p.z == 0; };
    if (atOrigin(points[0]) && atOrigin(points[1])) return;
    for (std::size_t i = 0; i < 2; ++i) {
        const Place at = pane.at(points[i]);
        pane.line({at.x - look.crossRadius, at.y - look.crossRadius},
                  {at.x + look.crossRadius, at.y + look.crossRadius}, look.settable);
        pane.line({at.x - look.crossRadius, at.y + look.crossRadius},
                  {at.x + look.crossRadius, at.y - look.crossRadius}, look.settable);
        drawLabel(pane, {at.x + look.crossRadius + 3, at.y - look.settableFont.height / 2.0},
                  i == 0 ? "1" : "2", look.settableFont, look.settable.color);
    }
}

void drawPreview(const Pane& pane, std::span<const Segment> preview) {
    for (const Segment& side : preview) {
        pane.line(pane.at(side.from), pane.at(side.to), look.preview);
    }
}

} // namespace

void drawOverlay(const Mesh& mesh, const Pane& pane, const Markers& markers) {
    const DisplayOptions& options = displayOptions;
    std::vector<unsigned char> uses;
    if (options.vertexes || options.selectedVertexes || options.numbers) {
        uses = pointUses(mesh, pane);
    }
    if (options.normals) drawNormals(mesh, pane);
    if (options.vertexes || options.selectedVertexes) drawVertexes(mesh, pane, uses);
    if (options.box) drawBox(pane);
    drawAxes(pane);
    drawPreview(pane, markers.preview);
    if (options.current) drawCurrent(mesh, pane, markers);
    if (options.settable) drawSettable(pane, markers.settable);
    drawNewCorners(mesh, pane, markers.corners);
    if (options.numbers) drawNumbers(mesh, pane, uses);
    drawRectangle(pane, markers.rectangle);
}

void drawTint(const Mesh& mesh, const Pane& pane) {
    constexpr unsigned share = 48; // of 256
    const Face* const face = displayOptions.current ? soundFace(mesh, mesh.curface) : nullptr;
    if (face == nullptr) return;
    std::vector<Place> corners;
    for (int k = 0; k < face->n; ++k) corners.push_back(pane.at(*face->q[k].p));
    tintPolygon(pane.canvas, corners, look.currentFace.color, share);
}

void drawLabel(const Pane& pane, Place place, const std::string& text, const Font& font,
               std::uint32_t color) {
    const bool inside = place.x >= 0 && place.y >= 0 && place.y + font.height <= pane.canvas.height
                        && place.x + platform().textWidth(text, font) <= pane.canvas.width;
    if (!inside) return;
    platform().drawText(pane.picture, pane.start + static_cast<int>(place.x),
                        static_cast<int>(place.y), text, font, color);
}

} // namespace polyfab
