// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/tell.h"

#include "editor/command_table.h"
#include "mesh/faces.h"
#include "mesh/mesh.h"
#include "workbench/notes.h"
#include "workbench/prompts.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

namespace polyfab {
namespace {

struct Number {
    std::string_view mark; ///< that stands for it in the table
    std::string (*text)(const FaceCounts& before, const FaceCounts& now);
};

constexpr Number numbers[] = {
    {"{before}",
     [](const FaceCounts& before, const FaceCounts&) { return counted(before.live, "face"); }},
    {"{now}", [](const FaceCounts&, const FaceCounts& now) { return counted(now.live); }},
    {"{selected}", [](const FaceCounts& before,
                      const FaceCounts&) { return counted(before.selected, "selected face"); }},
    {"{gone}", [](const FaceCounts& before,
                  const FaceCounts& now) { return counted(before.live - now.live, "face"); }},
    {"{selection}", [](const FaceCounts&,
                       const FaceCounts& now) { return selectionText(now.selected, now.live); }},
};

std::string filledIn(std::string text, const FaceCounts& before, const FaceCounts& now) {
    for (const Number& number : numbers) {
        const std::size_t at = text.find(number.mark);
        if (at != std::string::npos) text.replace(at, number.mark.size(), number.text(before, now));
    }
    return text;
}

enum class Needs : std::uint8_t {
    nothing,
    selectedFace,
    toldSelection, ///< a selected face, and a box tells when there is none
    unselectedFace,
    currentFace
};

/// When it is told what a command did: always, or only if it changed something that is saved.
enum class When : std::uint8_t { always, altered };

struct Row {
    int command;
    Needs needs; ///< without that it can do nothing
    When when = When::always;
    const char* did = "";         ///< with the marks of numbers; "": a box tells, or its function
    const char* lacked = nullptr; ///< what to say without what it needs, if not just that
};

constexpr const char* selection = "{selection}";
constexpr const char* split = "there were {before}; now there are {now}";

constexpr Row rows[] = {
    {281, Needs::nothing, When::always, "the view is upright and shows everything"},
    {372, Needs::selectedFace, When::altered, "moved the vertexes of the {selected}"},
    {386, Needs::selectedFace, When::altered, "removed the normals from the {selected}"},
    {388, Needs::selectedFace, When::altered, "removed the texture map info from the {selected}"},
    {409, Needs::toldSelection, When::altered, "mirrored the {selected}"},
    {413, Needs::toldSelection, When::altered, "changed the sign in the {selected}"},
    {1055, Needs::toldSelection, When::altered, "swopped y and z of the {selected}"},
    {1084, Needs::toldSelection, When::altered, "rotated the {selected}"},
    {1024, Needs::toldSelection, When::altered, "moved the {selected}, and the box with them"},
    {1070, Needs::nothing, When::always, "(0,0,0) is in the middles of the panes"},

    {280, Needs::currentFace},
    {290, Needs::nothing, When::always, selection},
    {291, Needs::nothing, When::always, selection},
    {2031, Needs::nothing, When::always, selection},
    {2032, Needs::selectedFace, When::always, selection},
    {2033, Needs::selectedFace, When::always, selection},
    {2034, Needs::selectedFace, When::always, selection},
    {2035, Needs::currentFace, When::always, selection},
    {2036, Needs::currentFace, When::always, selection},
    {2037, Needs::currentFace, When::always, selection},
    {292, Needs::nothing, When::always, selection},
    {293, Needs::nothing, When::always, selection},
    {294, Needs::nothing, When::always, selection},
    {295, Needs::nothing, When::always, selection},
    {325, Needs::nothing, When::always, selection},
    {326, Needs::nothing, When::always, selection},
    {2003, Needs::toldSelection, When::always, "the box is around the {selected}"},
    {299, Needs::selectedFace, When::altered, "deleted {gone}"},
    {316, Needs::unselectedFace, When::altered, "deleted {gone}"},
    {268, Needs::selectedFace},
    {1083, Needs::selectedFace},
    {274, Needs::selectedFace, When::altered, split},
    {344, Needs::selectedFace, When::altered, split},
    {284, Needs::nothing, When::always, "there is no current face now"},
    {396, Needs::nothing, When::always, "there is no current edge now"},
    {397, Needs::selectedFace, When::altered, "turned the {selected} over"},

    {393, Needs::selectedFace},

    {322, Needs::selectedFace, When::altered, "put the {selected} into a new group",
     "no face is selected, and so none is in the new group"},
    {1025, Needs::nothing, When::altered, "groups of the same name are one now"},
    {327, Needs::selectedFace, When::altered, "put the {selected} into a new material",
     "no face is selected, and so none has the new material"},
    {1026, Needs::nothing, When::altered, "materials of the same name are one now"},
    {402, Needs::selectedFace},
    {1065, Needs::selectedFace, When::altered, "deleted {gone}"},
};

const Row& rowOf(const Command& command) {
    static constexpr Row none = {0, Needs::nothing};
    const auto* const row = std::find_if(std::begin(rows), std::end(rows),
                                         [&](const Row& r) { return r.command == command.id; });
    return row == std::end(rows) ? none : *row;
}

/// Null: nothing; "": something, and a box tells that.
const char* lackingNow(Needs needs, const FaceCounts& faces) {
    if (needs == Needs::selectedFace && faces.selected == 0) return "no face is selected";
    if (needs == Needs::toldSelection && faces.selected == 0) return "";
    if (needs == Needs::unselectedFace && faces.selected == faces.live) {
        return "every face is selected";
    }
    if (needs == Needs::currentFace && !hasFace(*OB, OB->curface)) {
        return "no current face: click one in face handling mode";
    }
    return nullptr;
}

} // namespace

Teller::Teller(const Command* carriedOut) : command(OB != nullptr ? carriedOut : nullptr) {
    if (command == nullptr) return;
    const Row& row = rowOf(*command);
    lacking = lackingNow(row.needs, before);
    if (lacking != nullptr && row.lacked != nullptr) lacking = row.lacked;
    prompts.cancelled = false;
}

void Teller::tell(bool altered) const {
    if (command == nullptr) return;
    const Row& row = rowOf(*command);
    if (lacking != nullptr) return *lacking != '\0' ? note(lacking) : void();
    if (command->checked != nullptr) {
        return note(plainLabel(command->label) + (command->checked() ? ": on" : ": off"));
    }
    if (*row.did == '\0') return;
    const bool did = altered || (row.when == When::always && !prompts.cancelled);
    note(did ? filledIn(row.did, before, editorState.faces) : "nothing was changed");
}

void tellSelection() { note(selectionText(editorState.faces.selected, editorState.faces.live)); }

} // namespace polyfab
