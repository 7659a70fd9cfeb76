// SPDX-License-Identifier: GPL-3.0-or-later
#include "generators/block.h"

#include "generators/maker.h"
#include "mesh/stale.h"
#include "workbench/notes.h"
#include "workbench/prompts.h"
#include "workbench/state.h"

#include <array>
#include <cstddef>
#include <string>
#include <utility>

namespace polyfab {
namespace {

/// One number of the dialog: a coordinate of a settable point.
struct Field {
    const char* label;
    std::size_t point;
    double Vec3::*coordinate;
};

constexpr Field fields[] = {
    {"min x", 0, &Vec3::x}, {"max x", 1, &Vec3::x}, {"min y", 0, &Vec3::y},
    {"max y", 1, &Vec3::y}, {"min z", 0, &Vec3::z}, {"max z", 1, &Vec3::z},
};

double& valueOf(const Field& field) { return workbench.settable[field.point].*field.coordinate; }

/// Where the second corner is on the low side of the first.
void tellNegativeSizes() {
    const auto& [a, b] = workbench.settable;
    for (int axis = 0; axis < 3; ++axis) {
        const double size = along(b, axis) - along(a, axis);
        if (size < 0) note(std::string("the size in ") + "xyz"[axis] + " is " + fieldText(size));
    }
}

void makeAndTell(Mesh& mesh) {
    const auto& [a, b] = workbench.settable;
    const int points = mesh.np, faces = mesh.nf;
    makeBlock(mesh, a.x, b.x, a.y, b.y, a.z, b.z);
    if (mesh.nf == faces) {
        return note(std::string("a block of no size was not made: ") + howToSetPoints);
    }
    note("made a block of " + fieldText(b.x - a.x) + " x " + fieldText(b.y - a.y) + " x "
         + fieldText(b.z - a.z) + ": " + counted(mesh.np - points, "new point") + ", "
         + counted(mesh.nf - faces, "face"));
}

} // namespace

void addQuad(Mesh& mesh, const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& d) {
    std::array<int, 4> numbers{};
    std::size_t i = 0;
    for (const Vec3& at : {a, b, c, d}) {
        numbers[i++] = mesh.findOrAddPoint(at.x, at.y, at.z);
        if (mesh.points == nullptr) return;
    }
    Point* const p = mesh.points; // which moves no more
    Point* const list[] = {p + numbers[0], p + numbers[1], p + numbers[2], p + numbers[3]};
    mesh.addFaceByPoints(list, 4, false);
    stale.edges = true;
}

void makeBlock(Mesh& mesh, double x1, double x2, double y1, double y2, double z1, double z2) {
    const bool dx = x1 != x2, dy = y1 != y2, dz = z1 != z2;
    if (x2 < x1) std::swap(x1, x2);
    if (y2 < y1) std::swap(y1, y2);
    if (z2 < z1) std::swap(z1, z2);
    if (dy && dz) addQuad(mesh, {x1, y1, z1}, {x1, y1, z2}, {x1, y2, z2}, {x1, y2, z1});
    if (dx && dy) addQuad(mesh, {x1, y1, z1}, {x1, y2, z1}, {x2, y2, z1}, {x2, y1, z1});
    if (dx && dz) addQuad(mesh, {x1, y1, z1}, {x2, y1, z1}, {x2, y1, z2}, {x1, y1, z2});
    // What is flat in one axis is one sheet and not two.
    if (!dx || !dy || !dz) return;
    addQuad(mesh, {x2, y1, z1}, {x2, y2, z1}, {x2, y2, z2}, {x2, y1, z2});
    addQuad(mesh, {x1, y1, z2}, {x2, y1, z2}, {x2, y2, z2}, {x1, y2, z2});
    addQuad(mesh, {x1, y2, z1}, {x1, y2, z2}, {x2, y2, z2}, {x2, y2, z1});
}

void askAndMakeBlock(Mesh& mesh) {
    mesh.changed = 1;
    Dialog dialog{"BLOCK", "creating a new rectangular block", {}};
    for (const Field& field : fields)
        dialog.fields.push_back({field.label, fieldText(valueOf(field))});
    dialog.fields.push_back({"group", mesh.currentGroupName()});
    dialog.fields.push_back({"material", mesh.currentMaterialName()});
    tellNegativeSizes();
    const bool accepted = runDialog(dialog) != DialogResult::cancel;
    auto answer = dialog.fields.begin();
    for (const Field& field : fields) {
        if (accepted) parseNumber(answer->text.c_str(), valueOf(field));
        ++answer;
    }
    makeCurrent(mesh, answer[0].text, answer[1].text);
    accepted ? makeAndTell(mesh) : note("nothing was made");
}

} // namespace polyfab
