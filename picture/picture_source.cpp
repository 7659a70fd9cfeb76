// SPDX-License-Identifier: GPL-3.0-or-later
#include "picture/picture_source.h"

#include "picture/read_image.h"

namespace polyfab {

const Image* PictureSource::image() {
    if (!tried) whyNot = data.empty() ? readImage(file, decoded) : decodeImage(data, decoded);
    tried = true;
    return whyNot.empty() ? &decoded : nullptr;
}

} // namespace polyfab
