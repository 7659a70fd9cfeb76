// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/commands/texture_maps.h"

#include "display/texture_slots.h"
#include "io/file_name.h"
#include "picture/read_image.h"
#include "picture/write_png.h"
#include "platform/platform.h"
#include "workbench/notes.h"
#include "workbench/state.h"

#include <memory>
#include <string>
#include <utility>

namespace polyfab {
namespace {

const TextureSlot& slotOf(int number) { return textureSlots()[static_cast<std::size_t>(number)]; }

/// The file of a slot, so that no letter of it becomes the menu's.
std::string asLabel(const std::string& name) {
    std::string label;
    for (const char letter : name) label += letter == '&' ? "&&" : std::string(1, letter);
    return label;
}

void refuse(const char* what, const std::string& reason, const std::string& path) {
    platform().message(what + reason, path, Icon::exclamation);
}

} // namespace

void chooseTextureMap(int number) { workbench.textureNumber = number; }

bool textureMapIsChosen(int number) { return workbench.textureNumber == number; }

Shown shownTextureMap(int number) {
    const std::string& path = slotOf(number).path;
    return {"select texture map &" + std::to_string(number)
            + (path.empty() ? "" : " (" + asLabel(fileNameOf(path)) + ")")};
}

std::optional<ReadPicture> askForPicture(const std::string& prompt, const std::string& initial) {
    const auto path = platform().fileDialog(
        {false,
         prompt,
         {{"pictures", "*.PNG;*.JPG;*.JPEG;*.TGA;*.BMP;*.PPM;*.PGM"}, {"all files", "*"}},
         initial});
    if (!path) return std::nullopt;
    ReadPicture read{*path, {}};
    const std::string reason = readImage(*path, read.image);
    if (reason.empty()) return read;
    refuse("I can't read this picture: ", reason, *path);
    return std::nullopt;
}

void readTextureMap() {
    const int number = workbench.textureNumber;
    auto read = askForPicture("picture for texture map " + std::to_string(number) + "?",
                              fileNameOf(slotOf(number).path));
    if (!read) return;
    const auto image = std::make_shared<const Image>(std::move(read->image));
    note("texture map " + std::to_string(number) + " is " + std::to_string(image->width) + " x "
         + std::to_string(image->height));
    setTextureSlot(number, {read->path, image});
}

void writeTextureMap() {
    const int number = workbench.textureNumber;
    const TextureSlot slot = slotOf(number);
    const std::string name = "texture map " + std::to_string(number);
    if (slot.image == nullptr) return note("there is no picture in " + name);
    const std::string file = fileNameOf(slot.path);
    const auto path = platform().fileDialog({true,
                                             "file to write " + name + " to?",
                                             {{"PNG pictures", "*.PNG"}},
                                             file.substr(0, file.find_last_of('.')) + ".png",
                                             {},
                                             {},
                                             ".png"});
    if (!path) return;
    const std::string reason = writePngFile(*slot.image, *path);
    if (!reason.empty()) return refuse("I can't write this picture: ", reason, *path);
    note("wrote " + name + " to " + fileNameOf(*path));
}

} // namespace polyfab
