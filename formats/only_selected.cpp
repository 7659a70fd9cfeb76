// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/only_selected.h"

#include "mesh/faces.h"
#include "mesh/mesh.h"
#include "platform/platform.h"

#include <algorithm>

namespace polyfab {

bool askOnlySelected(const Mesh& mesh, bool deletedToo, Wanted wanted) {
    if (wanted == Wanted::all) return false;
    const Face* const end = mesh.faces + mesh.nf;
    const auto unselected = [&](const Face& face) {
        return face.selected == 0 && (deletedToo || isLive(face));
    };
    const auto selected = [](const Face& face) { return face.selected != 0 && isLive(face); };
    if (!std::any_of<const Face*>(mesh.faces, end, unselected)) return false;
    const bool some = std::any_of<const Face*>(mesh.faces, end, selected);
    return platform().question("", "Do you want me to output only the selected parts?",
                               Buttons::yesNo, some ? Choice::yes : Choice::no)
           == Choice::yes;
}

} // namespace polyfab
