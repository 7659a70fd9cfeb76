// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/commands/backgrounds.h"

#include "display/backgrounds.h"
#include "display/options.h"
#include "display/wireframe.h"
#include "mesh/mesh.h"
#include "picture/read_image.h"
#include "platform/platform.h"
#include "workbench/notes.h"
#include "workbench/state.h"

#include <new>
#include <optional>
#include <string>
#include <utility>

namespace polyfab {
namespace {

std::string sizeOf(int width, int height) {
    return std::to_string(width) + " x " + std::to_string(height);
}

/// Nothing when the user or the file would not have it, who knows by then.
std::optional<Image> readFile(const std::string& prompt) {
    const auto path = platform().fileDialog(
        {false,
         prompt,
         {{"pictures", "*.PNG;*.JPG;*.JPEG;*.TGA;*.BMP;*.PPM;*.PGM"}, {"all files", "*"}},
         ""});
    if (!path) return std::nullopt;
    Image image;
    const std::string reason = readImage(*path, image);
    if (reason.empty()) return image;
    platform().message("I can't read this picture: " + reason, *path, Icon::exclamation);
    return std::nullopt;
}

std::optional<Image> chooseImage(const std::string& of) {
    std::optional<Bitmap> copied = platform().clipboardBitmap();
    if (copied && !copied->pixels.empty()) {
        const Choice choice = platform().question(
            of, "shall I take the picture from the clipboard?", Buttons::yesNoCancel, Choice::yes);
        if (choice == Choice::cancel) return std::nullopt;
        if (choice == Choice::yes) {
            return Image{copied->width, copied->height, std::move(copied->pixels)};
        }
    }
    return readFile(of + "?");
}

} // namespace

template <bool left>
void readBackground() {
    const std::string name =
        left ? "background image of the left pane" : "background image of the right pane";
    try {
        std::optional<Image> image = chooseImage(name);
        if (!image) return;
        const std::string size = sizeOf(image->width, image->height);
        setBackground(left, std::move(*image));
        note("the " + name + " is " + size
             + (displayOptions.backgrounds ? "" : "; the pane backgrounds are not shown"));
    } catch (const std::bad_alloc&) {
        platform().message(name, "I can't get enough memory for this picture", Icon::exclamation);
    }
}
template void readBackground<true>();
template void readBackground<false>();

void copyRendered() {
    if (!isRendered(true) && !isRendered(false)) return note("no pane is rendered");
    try {
        const Bitmap picture = renderedPanes(*OB);
        platform().copyToClipboard(picture);
        note("a picture of " + sizeOf(picture.width, picture.height) + " is on the clipboard");
    } catch (const std::bad_alloc&) {
        platform().message("clipboard", "I can't get enough memory to render", Icon::exclamation);
    }
}

} // namespace polyfab
