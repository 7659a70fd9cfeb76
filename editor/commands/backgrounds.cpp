// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/commands/backgrounds.h"

#include "display/backgrounds.h"
#include "display/options.h"
#include "display/wireframe.h"
#include "editor/commands/texture_maps.h"
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

std::optional<Image> chooseImage(const std::string& of) {
    std::optional<Bitmap> copied = platform().clipboardBitmap();
    if (copied && !copied->pixels.empty()) {
        const Choice choice = platform().question(
            of, "shall I take the picture from the clipboard?", Buttons::yesNoCancel, Choice::yes);
        if (choice == Choice::cancel) return std::nullopt;
        if (choice == Choice::yes) {
            Image image{copied->width, copied->height, std::move(copied->pixels)};
            dropEmptyAlpha(image);
            return image;
        }
    }
    std::optional<ReadPicture> read = askForPicture(of + "?", "");
    if (!read) return std::nullopt;
    return std::move(read->image);
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
        displayOptions.backgrounds = true;
        note("the " + name + " is " + size);
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
        if (picture.pixels.empty()) return note("no pane is rendered");
        platform().copyToClipboard(picture);
        note("a picture of " + sizeOf(picture.width, picture.height) + " is on the clipboard");
    } catch (const std::bad_alloc&) {
        platform().message("clipboard", "I can't get enough memory to render", Icon::exclamation);
    }
}

} // namespace polyfab
