// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/modes/click_select.h"

#include "editor/editor_state.h"
#include "editor/modes/under_mouse.h"
#include "mesh/mesh.h"
#include "mesh/stale.h"

#include <cstdint>

namespace polyfab {
namespace {

/// `index` is the face's number in the table of `count` entries that tells the wholes apart.
template <typename Entry>
void selectWholeAt(const Event& event, std::int16_t Face::*index, Entry* Mesh::*entries,
                   std::int32_t Mesh::*count) {
    if (!leftPressed()) return;
    const std::optional<PanePlace> place = pickingPlace(event);
    const int clicked = place ? faceAt(*OB, *place) : -1;
    if (clicked < 0) return;
    const int wanted = OB->faces[clicked].*index;
    for (Face* face = OB->faces; face != OB->faces + OB->nf; ++face) {
        if (face->q != nullptr) face->selected = face->*index == wanted;
    }
    for (int i = 0; i < OB->*count; ++i) (OB->*entries)[i].selected = i == wanted;
    stale.edges = true;
}

} // namespace

void selectGroupAt(const Event& event) { selectWholeAt(event, &Face::g, &Mesh::groups, &Mesh::ng); }

void selectMaterialAt(const Event& event) {
    selectWholeAt(event, &Face::mat, &Mesh::materials, &Mesh::nmat);
}

void selectPartAt(const Event& event) {
    selectWholeAt(event, &Face::prt, &Mesh::parts, &Mesh::nprt);
}

void selectTextureMapAreaAt(const Event& event) {
    selectWholeAt(event, &Face::tma, &Mesh::tmas, &Mesh::ntma);
}

} // namespace polyfab
