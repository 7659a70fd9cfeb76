// SPDX-License-Identifier: GPL-3.0-or-later
// All faces are filled before any line is drawn, so that none covers another's edge.
#include "tools/draw_texture_map.h"

#include "io/file_name.h"
#include "mesh/faces.h"
#include "mesh/mesh.h"
#include "picture/smooth.h"
#include "picture/write_png.h"
#include "platform/platform.h"
#include "workbench/long_work.h"
#include "workbench/notes.h"
#include "workbench/prompts.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>
#include <vector>

namespace polyfab {
namespace {

constexpr double leastSide = 16, mostSide = 16384;
constexpr std::uint32_t tint = 0x40000000, black = 0xFF000000;

bool isDrawn(const Face& face) {
    return isLiveSelected(face)
           && std::all_of(face.q, face.q + face.n,
                          [](const FaceCorner& corner) { return corner.t != nullptr; });
}

std::vector<const Face*> drawnFaces(const Mesh& mesh) {
    std::vector<const Face*> faces;
    for (const Face& face : allFaces(mesh)) {
        if (isDrawn(face)) faces.push_back(&face);
    }
    return faces;
}

bool reachesBeyond(const Face& face) {
    const auto within = [](double value) { return value >= 0 && value <= 1; };
    return !std::all_of(face.q, face.q + face.n, [&](const FaceCorner& corner) {
        return within(corner.t->u) && within(corner.t->v);
    });
}

class Sheet {
  public:
    explicit Sheet(int size)
        : side(size), image{size, size,
                            std::vector<std::uint32_t>(std::size_t(size) * std::size_t(size))},
          canvas{image.pixels.data(), size, size, size} {}

    void fill(const Mesh& mesh, const Face& face) {
        corners.clear();
        for (const FaceCorner& corner : polyfab::corners(face)) corners.push_back(at(*corner.t));
        const bool hasMaterial = face.mat >= 0 && face.mat < mesh.nmat;
        const std::uint32_t color = hasMaterial ? mesh.materials[face.mat].color : defaultColor;
        fillPolygon(canvas, corners, tint | (color & 0xFFFFFF));
    }

    /// An edge of two faces is the same line from both.
    void outline(const Face& face) {
        for (int k = 0; k < face.n; ++k) {
            auto [from, to] = std::minmax(face.q[k].t, face.q[(k + 1) % face.n].t);
            const Place a = at(*from), b = at(*to);
            drawLine(canvas, a.x, a.y, b.x, b.y, {black});
        }
    }

    const Image& picture() const { return image; }

  private:
    Place at(const TexCoord& t) const { return {t.u * side - 0.5, (1 - t.v) * side - 0.5}; }

    double side;
    Image image;
    Canvas canvas;
    std::vector<Place> corners;
};

void refuse(const std::string& title, const std::string& text) {
    platform().message(title, text, Icon::exclamation);
}

bool askSide(int& side) {
    askText("how many pixels wide and high?", "1024");
    if (prompts.cancelled) return false;
    double number = 0;
    const bool fits = parseOnlyNumber(prompts.answer[0], number) && number >= leastSide
                      && number <= mostSide && number == std::floor(number);
    if (fits) {
        side = static_cast<int>(number);
    } else {
        refuse("texture map", "I need a whole number from 16 to 16384");
    }
    return fits;
}

std::string nameBeside(const std::string& meshFile) {
    const std::string file = fileNameOf(meshFile), name = file.substr(0, file.find_last_of('.'));
    return (name.empty() ? "texture" : name) + "-uv.png"; // a dash begins options, no names
}

void draw(const Mesh& mesh, const std::vector<const Face*>& faces, int side,
          const std::string& path) {
    Sheet sheet(side);
    LoopProgress progress(2 * std::ssize(faces));
    for (const Face* const face : faces) {
        progress.step();
        sheet.fill(mesh, *face);
    }
    for (const Face* const face : faces) {
        progress.step();
        sheet.outline(*face);
    }
    const std::string reason = writePngFile(sheet.picture(), path);
    if (!reason.empty()) return refuse("I can't write this picture: " + reason, path);
    const auto beyond = std::count_if(faces.begin(), faces.end(),
                                      [](const Face* face) { return reachesBeyond(*face); });
    note("I have drawn " + counted(std::ssize(faces), "face") + "; " + counted(beyond)
         + " reach beyond 0 to 1 and are cut off");
}

} // namespace

void drawTextureMap(const Mesh& mesh, const std::string& meshFile) try {
    const std::vector<const Face*> faces = drawnFaces(mesh);
    if (faces.empty()) return note("the selected faces have no texture map coordinates");
    int side = 0;
    if (!askSide(side)) return;
    const auto path = platform().fileDialog({true,
                                             "picture file for the texture map?",
                                             {{"PNG pictures", "*.PNG"}},
                                             nameBeside(meshFile),
                                             {},
                                             {},
                                             ".png"});
    if (path) draw(mesh, faces, side, *path);
} catch (const std::bad_alloc&) {
    refuse("texture map", "there is not enough memory for such a picture");
}

} // namespace polyfab
