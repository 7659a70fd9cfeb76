// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/only_selected.h"

#include "mesh/faces.h"
#include "mesh/mesh.h"
#include "platform/platform.h"

#include <algorithm>

namespace polyfab {

bool askOnlySelected(const Mesh& mesh, bool deletedToo) {
    const auto unselected = [&](const Face& face) {
        return face.selected == 0 && (deletedToo || isLive(face));
    };
    return std::any_of(mesh.faces, mesh.faces + mesh.nf, unselected)
           && platform().question("", "Do you want me to output only the selected parts?",
                                  Buttons::yesNo)
                  == Choice::yes;
}

} // namespace polyfab
