// SPDX-License-Identifier: GPL-3.0-or-later
// The checksums of the chunks are put right first, so that what is in them is looked at.
#include "fuzz/image_fuzz.h"

#include <zlib.h>

namespace {

constexpr std::size_t headSize = 8; ///< of the file
constexpr std::size_t frame = 12;   ///< of a chunk: length, name and checksum

std::uint32_t number(const std::string& bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = at; i < at + 4; ++i) {
        value = value << 8 | static_cast<std::uint8_t>(bytes[i]);
    }
    return value;
}

void mendChecksums(std::string& bytes) {
    std::size_t at = headSize;
    while (at + frame <= bytes.size() && number(bytes, at) <= bytes.size() - at - frame) {
        const std::size_t length = number(bytes, at);
        const auto* const told = reinterpret_cast<const unsigned char*>(bytes.data()) + at + 4;
        const auto sum = crc32(0, told, static_cast<unsigned>(length + 4));
        for (std::size_t i = 0; i < 4; ++i) {
            bytes[at + 8 + length + i] = static_cast<char>(sum >> (24 - 8 * i));
        }
        at += length + frame;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string bytes(polyfab::fuzz::textOf(data, size));
    mendChecksums(bytes);
    return polyfab::fuzz::readPicture(polyfab::decodePng, bytes);
}
