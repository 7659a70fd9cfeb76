// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/image_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return polyfab::fuzz::readPicture(polyfab::decodeTga, polyfab::fuzz::textOf(data, size));
}
