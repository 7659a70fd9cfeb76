// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/image_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0; // the reader is only asked where its head is there
    return polyfab::fuzz::readPicture(polyfab::decodePpm, polyfab::fuzz::textOf(data, size));
}
