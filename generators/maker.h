// SPDX-License-Identifier: GPL-3.0-or-later
// What makers of objects have in common: a table of what each asks, the dialog that asks it and
// shows what would come of the answers, and the way into the mesh.
#pragma once

#include "generators/shape.h"
#include "geometry/vec3.h"
#include "mesh/mesh.h"

#include <cstddef>
#include <limits>
#include <span>
#include <string>

namespace polyfab {

/// The farthest and largest that anything is made.
inline constexpr double mostLength = 1e100;

/// A field that takes a number.
struct Parameter {
    const char* label;
    double usual; ///< what stands in the field at first
    double low, high;
    bool whole = false;
    int point = -1; ///< which settable point it is a coordinate of; -1: none
    int axis = 0;   ///< the coordinate
};

/// A coordinate of settable point 0 or 1.
constexpr Parameter coordinate(const char* label, int point, int axis) {
    return {label, 0, -mostLength, mostLength, false, point, axis};
}

/// A length above 0.
constexpr Parameter size(const char* label, double usual) {
    return {label, usual, 1 / mostLength, mostLength};
}

constexpr Parameter count(const char* label, double usual, double low, double high) {
    return {label, usual, low, high, true};
}

/// The numbers that were given, in the order of the parameters.
struct Answers {
    std::vector<double> numbers;

    double operator[](int i) const { return numbers[static_cast<std::size_t>(i)]; }
    int whole(int i) const { return static_cast<int>((*this)[i]); }
    /// Three in a row as a position.
    Vec3 position(int i) const { return {(*this)[i], (*this)[i + 1], (*this)[i + 2]}; }
};

struct Maker {
    const char* dialog; ///< its name for scripts
    const char* what;   ///< "sphere"
    std::span<const Parameter> parameters;
    bool texture;  ///< whether it can make texture coordinates
    bool needFace; ///< it works on the current face
    /// How many faces it would make, before anything is made.
    double (*faces)(const Mesh& mesh, const Answers& answers);
    /// Makes the object. The answers are in the ranges of the parameters. Why it can't be made, or
    /// null.
    const char* (*build)(const Mesh& mesh, const Answers& answers, Shape& shape);
    /// What happens to the current face when the shape is in the mesh; null: nothing.
    void (*finish)(Mesh& mesh, const Answers& answers, const Shape& shape) = nullptr;
};

/// More are not made.
inline constexpr double mostFaces = 5e6;

/// Shows the parameters, the current group and the current material in a dialog and makes what the
/// user leaves in it, of the settable points as they then are. While the dialog is open the sides
/// of what would be made are the workbench's preview. What can't be made is refused in a box,
/// before anything is allocated if it is for its size. Escape accepts. As for a block, the mesh
/// counts as changed and the group and material become current, even after cancel.
void askAndMake(Mesh& mesh, const Maker& maker);

/// For notes, where both settable points are at one place.
inline constexpr const char* howToSetPoints =
    "hold Ctrl and 1, or Ctrl and 2, and click in a pane to set the settable points";

/// A number as it stands in a field: six digits.
[[nodiscard]] std::string fieldText(double number);

/// Makes the group and the material of these names current; new ones are made, black ones.
void makeCurrent(Mesh& mesh, const std::string& group, const std::string& material);

extern const Maker sphereMaker, cylinderMaker, roundedCylinderMaker, torusMaker, sparksMaker,
    pipeMaker, spinMaker, spiralMaker, rifleMaker;

} // namespace polyfab
