// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/modes/click_select.h"

#include "editor/modes/combine.h"
#include "editor/modes/under_mouse.h"

#include <cstdint>

namespace polyfab {
namespace {

/// `index` is the face's number in the table of `count` entries that tells the wholes apart.
template <typename Entry>
std::unique_ptr<Drag> selectWholeAt(const Event& press, std::int16_t Face::*index,
                                    Entry* Mesh::*entries, std::int32_t Mesh::*count) {
    const std::optional<PanePlace> place = pickingPlace(press);
    const int clicked = place ? faceAt(*OB, *place) : -1;
    if (clicked < 0) return nullptr;
    const int wanted = OB->faces[clicked].*index;
    const Combine combine = combineByKeys();
    combineSelection(combine, [=](const Face& face) { return face.*index == wanted; });
    for (int i = 0; i < OB->*count; ++i) {
        auto& picked = (OB->*entries)[i].selected;
        picked = combine(picked != 0, i == wanted) ? 1 : 0;
    }
    return nullptr;
}

} // namespace

std::unique_ptr<Drag> selectGroupAt(const Event& press) {
    return selectWholeAt(press, &Face::g, &Mesh::groups, &Mesh::ng);
}

std::unique_ptr<Drag> selectMaterialAt(const Event& press) {
    return selectWholeAt(press, &Face::mat, &Mesh::materials, &Mesh::nmat);
}

std::unique_ptr<Drag> selectPartAt(const Event& press) {
    return selectWholeAt(press, &Face::prt, &Mesh::parts, &Mesh::nprt);
}

std::unique_ptr<Drag> selectTextureMapAreaAt(const Event& press) {
    return selectWholeAt(press, &Face::tma, &Mesh::tmas, &Mesh::ntma);
}

} // namespace polyfab
