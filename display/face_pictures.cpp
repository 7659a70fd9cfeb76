// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/face_pictures.h"

#include "display/texture_slots.h"
#include "display/told.h"
#include "mesh/stale.h"

#include <cstddef>
#include <span>
#include <utility>

namespace polyfab {
namespace {

LooksRef looksOfOB;
TextureSlots slots;
std::uint64_t version = 0;

void noteChange() {
    ++version;
    stale.picture = true;
}

/// The picture of the look, decoded by now.
const Image* imageOf(const std::string& material, PictureSource& picture) {
    const bool known = !picture.reason().empty();
    const Image* const image = picture.image();
    if (image == nullptr && !known) {
        toldByDisplay.push_back("I can't read the picture of the material " + material + ": "
                                + picture.reason());
    }
    return image;
}

} // namespace

const LooksRef& materialLooks() { return looksOfOB; }

void setMaterialLooks(LooksRef looks) {
    if (looks == looksOfOB) return;
    looksOfOB = std::move(looks);
    noteChange();
}

const MaterialLook* lookOf(std::string_view material) {
    if (looksOfOB == nullptr) return nullptr;
    const auto found = looksOfOB->byName.find(material);
    return found != looksOfOB->byName.end() ? &found->second : nullptr;
}

void keepLook(std::string_view name, std::string_view newName) {
    const MaterialLook* const look = lookOf(name);
    if (look == nullptr) return;
    MaterialLooks looks = *looksOfOB;
    if (looks.byName.emplace(newName, *look).second) {
        setMaterialLooks(std::make_shared<const MaterialLooks>(std::move(looks)));
    }
}

const TextureSlots& textureSlots() { return slots; }

void setTextureSlot(int number, TextureSlot slot) {
    slots[static_cast<std::size_t>(number)] = std::move(slot);
    noteChange();
}

void resetTextureSlots() {
    slots = {};
    noteChange();
}

FacePictures::FacePictures(const Mesh& of) : mesh(of) {
    looks.resize(static_cast<std::size_t>(mesh.nmat));
    ofMaterials.resize(looks.size());
    for (std::size_t i = 0; i < looks.size(); ++i) {
        const MaterialLook* const look = lookOf(mesh.materials[i].name);
        if (look != nullptr && look->picture != nullptr) looks[i] = look;
    }
    for (std::size_t i = 0; i < ofSlots.size(); ++i) ofSlots[i].image = slots[i].image.get();
}

const FacePicture& FacePictures::of(const Face& face) {
    static constexpr FacePicture none;
    const auto material = static_cast<std::size_t>(face.mat);
    if (face.mat >= 0 && material < looks.size()) {
        if (const MaterialLook* const look = std::exchange(looks[material], nullptr)) {
            const Image* const image = imageOf(mesh.materials[material].name, *look->picture);
            ofMaterials[material] = {image, look->placing};
        }
        if (ofMaterials[material].image != nullptr) return ofMaterials[material];
    }
    if (face.g < 0 || face.g >= mesh.ng) return none;
    return ofSlots[mesh.groups[face.g].texture % ofSlots.size()];
}

const Image* pictureOf(const Face& face) { return FacePictures(*OB).of(face).image; }

std::uint64_t pictureVersion() { return version; }

} // namespace polyfab
