// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/commands/transform_by.h"

#include "display/box.h"
#include "editor/commands/selection.h"
#include "editor/commands/transform_selected.h"
#include "editor/editor_state.h"
#include "geometry/affine.h"
#include "geometry/projection.h"
#include "mesh/face_angle.h"
#include "mesh/mesh.h"
#include "platform/platform.h"
#include "workbench/notes.h"
#include "workbench/prompts.h"
#include "workbench/state.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <string>

namespace polyfab {
namespace {

constexpr const char* title = "move, scale, rotate by";

constexpr const char* labels[] = {
    "move in x",       "move in y",
    "move in z",       "factor in x",
    "factor in y",     "factor in z",
    "degrees about x", "degrees about y",
    "degrees about z", "about (b middle of the box, o origin, 1 settable point 1)"};

struct Pivot {
    const char* answer;
    Vec3 (*place)();
};

constexpr Pivot pivots[] = {
    {"b",
     [] {
         const Vec3 &l = box.left, &r = box.right;
         return projection.toWorld({(l.x + r.x) / 2, (l.y + r.y) / 2, (l.z + r.z) / 2});
     }},
    {"o", [] { return Vec3{}; }},
    {"1", [] { return workbench.settable[0]; }},
};

void refuse(const char* why) { platform().message(title, why, Icon::exclamation); }

/// False when cancelled. The texts are kept, also those that make no sense.
bool ask(TransformTexts& texts) {
    Dialog dialog{"TRANSFORM", title, {}};
    for (std::size_t i = 0; i < texts.size(); ++i) dialog.fields.push_back({labels[i], texts[i]});
    if (runDialog(dialog) != DialogResult::accept) return false;
    for (std::size_t i = 0; i < texts.size(); ++i) texts[i] = dialog.fields[i].text;
    return true;
}

/// False after a box.
bool readNumbers(const TransformTexts& texts, double (&numbers)[9]) {
    for (std::size_t i = 0; i < 9; ++i) {
        if (!parseNumber(texts[i].c_str(), numbers[i]) || !std::isfinite(numbers[i])) {
            refuse((std::string("I need a number for \"") + labels[i] + "\"").c_str());
            return false;
        }
    }
    if (numbers[3] != 0 && numbers[4] != 0 && numbers[5] != 0) return true;
    refuse("a factor of 0 would leave nothing to come back from");
    return false;
}

AffineMap mapOf(const double (&numbers)[9], const Vec3& pivot) {
    AffineMap map = scaling({numbers[3], numbers[4], numbers[5]});
    for (int axis = 0; axis < 3; ++axis) {
        if (numbers[6 + axis] != 0)
            map = product(rotation(axis, numbers[6 + axis] * pi / 180), map);
    }
    map = about(pivot, map);
    for (int axis = 0; axis < 3; ++axis) map.row[axis][3] += numbers[axis];
    return map;
}

struct Act {
    const char* did;
    std::size_t first; ///< of its three texts
    double nothing;    ///< the number that changes nothing
};

constexpr Act acts[] = {{"scaled by", 3, 1}, {"rotated by", 6, 0}, {"moved by", 0, 0}};

/// "scaled by 2, 1, 1 - moved by 0, 0, 5", in the order in which it was done.
std::string told(const TransformTexts& texts, const double (&numbers)[9]) {
    std::string all;
    for (const Act& act : acts) {
        const double* const own = numbers + act.first;
        if (std::all_of(own, own + 3, [&](double each) { return each == act.nothing; })) continue;
        all += (all.empty() ? "" : " - ") + std::string(act.did) + " " + texts[act.first] + ", "
               + texts[act.first + 1] + ", " + texts[act.first + 2];
    }
    return all.empty() ? "nothing was changed" : all;
}

} // namespace

void transformBy() {
    TransformTexts& texts = editorState.transform;
    double numbers[9] = {};
    if (!hasSelection() || !ask(texts) || !readNumbers(texts, numbers)) return;
    for (const Pivot& pivot : pivots) {
        if (texts[9] != pivot.answer) continue;
        transformSelected(*OB, mapOf(numbers, pivot.place()));
        return note(told(texts, numbers));
    }
    refuse("about what? b, o or 1");
}

} // namespace polyfab
