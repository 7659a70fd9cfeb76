// SPDX-License-Identifier: GPL-3.0-or-later
#include "generators/maker.h"

#include "mesh/faces.h"
#include "mesh/stale.h"
#include "platform/platform.h"
#include "workbench/notes.h"
#include "workbench/prompts.h"
#include "workbench/state.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <utility>

namespace polyfab {
namespace {

using Fields = std::vector<DialogField>;

double& settableOf(const Parameter& parameter) {
    return along(workbench.settable[static_cast<std::size_t>(parameter.point)], parameter.axis);
}

Fields fieldsOf(const Mesh& mesh, const Maker& maker) {
    Fields fields;
    for (const Parameter& row : maker.parameters) {
        fields.push_back({row.label, fieldText(row.point < 0 ? row.usual : settableOf(row))});
    }
    fields.push_back({"group", mesh.currentGroupName()});
    fields.push_back({"material", mesh.currentMaterialName()});
    if (maker.texture) fields.push_back({"texture coordinates", "0", true});
    return fields;
}

/// What the field has to hold, in words.
std::string wanted(const Parameter& row) {
    const std::string label = std::string(row.label) + " has to be ";
    const auto number = [&](double value) {
        return row.whole ? counted(static_cast<std::int64_t>(value)) : fieldText(value);
    };
    if (row.low == 1 / mostLength) return label + "more than 0 and at most " + number(row.high);
    return label + (row.whole ? "a whole number" : "a number") + " from " + number(row.low) + " to "
           + number(row.high);
}

bool fits(const Parameter& row, double value) {
    return value >= row.low && value <= row.high && !(row.whole && value != std::floor(value));
}

/// Reads the numbers. What is wrong with the first one that does not fit, or "".
std::string readAnswers(const Maker& maker, const Fields& fields, Answers& answers) {
    answers.numbers.clear();
    for (const Parameter& row : maker.parameters) {
        double value = 0;
        const std::string& text = fields[answers.numbers.size()].text;
        if (!parseNumber(text.c_str(), value) || !fits(row, value)) return wanted(row);
        answers.numbers.push_back(value);
    }
    return "";
}

bool wantsTexture(const Maker& maker, const Fields& fields) {
    return maker.texture && fields.back().text == "1";
}

/// Why the answers can't be made, or "" and the shape.
std::string build(const Mesh& mesh, const Maker& maker, const Answers& answers, Shape& shape) {
    const double faces = maker.faces(mesh, answers);
    if (faces > mostFaces) {
        return "it would have " + counted(static_cast<std::int64_t>(faces)) + " faces, and I make "
               + counted(static_cast<std::int64_t>(mostFaces)) + " at most";
    }
    if (const char* const refusal = maker.build(mesh, answers, shape)) return refusal;
    if (!isSolid(shape)) return "it is so small or so thin that some faces would have no area";
    return "";
}

/// Keeps the preview at what the fields say, and leaves none behind.
class Previewer {
  public:
    Previewer(const Mesh& shownMesh, const Maker& shownMaker)
        : mesh(shownMesh), maker(shownMaker) {}
    ~Previewer() { show({}); }
    Previewer(const Previewer&) = delete;
    Previewer& operator=(const Previewer&) = delete;

    void follow(const Fields& fields) {
        Answers answers;
        const bool read = readAnswers(maker, fields, answers).empty();
        if (!read) answers.numbers.clear();
        if (shown == answers.numbers) return;
        shown = answers.numbers;
        Shape shape(false);
        const bool made = read && build(mesh, maker, answers, shape).empty();
        show(made ? sidesOf(shape) : std::vector<Segment>());
    }

  private:
    static void show(std::vector<Segment> sides) {
        workbench.preview = std::move(sides);
        stale.picture = true;
        platform().requestPaint();
    }

    const Mesh& mesh;
    const Maker& maker;
    std::optional<std::vector<double>> shown; ///< the numbers; of fields that say none, empty
};

/// False after cancel. Otherwise the fields are what the user left.
bool ask(const Mesh& mesh, const Maker& maker, Fields& fields) {
    Dialog dialog{maker.dialog, std::string("creating a new ") + maker.what, fields};
    Previewer previewer(mesh, maker);
    previewer.follow(fields);
    dialog.onChange = [&](const Fields& edited) { previewer.follow(edited); };
    const bool accepted = runDialog(dialog) != DialogResult::cancel;
    fields = std::move(dialog.fields);
    return accepted;
}

void storeSettable(const Maker& maker, const Answers& answers) {
    std::size_t i = 0;
    for (const Parameter& row : maker.parameters) {
        if (row.point >= 0) settableOf(row) = answers.numbers[i];
        ++i;
    }
}

/// Whether it is made from one settable point to the other, and they are at one place.
bool pointsCoincide(const Maker& maker) {
    const auto& [a, b] = workbench.settable;
    return isZero(b - a)
           && std::any_of(maker.parameters.begin(), maker.parameters.end(),
                          [](const Parameter& row) { return row.point == 1; });
}

const char* article(const Maker& maker) { return *maker.what == 'a' ? "an " : "a "; }

/// Why nothing was made, or "".
std::string make(Mesh& mesh, const Maker& maker, const Fields& fields) {
    Answers answers;
    if (std::string fault = readAnswers(maker, fields, answers); !fault.empty()) return fault;
    storeSettable(maker, answers);
    Shape shape(wantsTexture(maker, fields));
    if (std::string fault = build(mesh, maker, answers, shape); !fault.empty()) return fault;
    const auto points = static_cast<std::int64_t>(shape.points.size());
    const std::int64_t met = points - addShape(mesh, shape);
    if (maker.finish != nullptr) maker.finish(mesh, answers, shape);
    note(std::string("made ") + article(maker) + maker.what + ": " + counted(points, "point") + ", "
         + counted(static_cast<std::int64_t>(shape.ends.size()), "face")
         + (met > 0
                ? "; " + counted(met, "point") + (met == 1 ? " was" : " were") + " there already"
                : ""));
    return "";
}

} // namespace

std::string fieldText(double number) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%g", number);
    return digits;
}

void makeCurrent(Mesh& mesh, const std::string& group, const std::string& material) {
    mesh.curgroup = static_cast<std::int16_t>(mesh.findOrAddGroup(fittingAnswer(group)));
    mesh.curmat =
        static_cast<std::int16_t>(mesh.findOrAddMaterial(0x000000, fittingAnswer(material)));
}

void askAndMake(Mesh& mesh, const Maker& maker) {
    const std::string title = std::string("I can't make the ") + maker.what;
    if (maker.needFace && !hasFace(mesh, mesh.curface)) {
        return platform().message(title, "click a face first", Icon::exclamation);
    }
    mesh.changed = 1;
    Fields fields = fieldsOf(mesh, maker);
    const bool accepted = ask(mesh, maker, fields);
    const std::size_t names = maker.parameters.size();
    makeCurrent(mesh, fields[names].text, fields[names + 1].text);
    if (!accepted) return note("nothing was made");
    const std::string fault = make(mesh, maker, fields);
    if (fault.empty()) return;
    platform().message(title, fault, Icon::exclamation);
    if (pointsCoincide(maker)) note(howToSetPoints);
}

} // namespace polyfab
