// SPDX-License-Identifier: GPL-3.0-or-later
// TGA files: palettes, colours of 15 to 32 bits and grey, each plain or in packets of runs, from
// any corner.
#include "io/bytes.h"
#include "picture/image_formats.h"
#include "picture/read_image.h"

#include <cstddef>
#include <vector>

namespace polyfab {
namespace {

struct Head {
    unsigned kind; ///< 1: a palette, 2: colours, 3: grey
    bool packed;
    std::uint64_t firstColor, colorCount;
    unsigned colorBits, bits;
    int width, height;
    unsigned alphaBits;
    bool fromRight, fromTop;
};

bool isColorDepth(unsigned bits) { return bits == 15 || bits == 16 || bits == 24 || bits == 32; }

/// False when it makes no sense.
bool readHead(ByteReader& in, Head& head) {
    const std::size_t nameSize = in.byte();
    const unsigned map = in.byte();
    const unsigned type = in.byte();
    head.kind = type & 7U;
    head.packed = (type & 8U) != 0;
    head.firstColor = in.fixed(2);
    head.colorCount = in.fixed(2);
    head.colorBits = in.byte();
    if (map == 0) head.colorCount = 0; // what stands there then means nothing
    in.fixed(4);                       // where on a screen it stood
    head.width = static_cast<int>(in.fixed(2));
    head.height = static_cast<int>(in.fixed(2));
    head.bits = in.byte();
    const unsigned flags = in.byte();
    head.alphaBits = flags & 15U;
    head.fromRight = (flags & 16U) != 0;
    head.fromTop = (flags & 32U) != 0;
    in.raw(nameSize);
    const bool mapFits = map == 0 || (map == 1 && isColorDepth(head.colorBits));
    const bool indexes = head.kind == 1 && map == 1 && (head.bits == 8 || head.bits == 16);
    const bool grey = head.kind == 3 && (head.bits == 8 || head.bits == 16);
    return (type & ~11U) == 0 && (flags & 0xC0U) == 0 && mapFits
           && (indexes || grey || (head.kind == 2 && isColorDepth(head.bits))) && in.ok();
}

std::uint32_t colorOf(std::uint64_t value, unsigned bits, unsigned alphaBits) {
    const auto v = static_cast<std::uint32_t>(value);
    if (bits == 24) return v | 0xFF000000;
    if (bits == 32) return alphaBits == 0 ? v | 0xFF000000 : v;
    const std::uint32_t color =
        opaque(toByte(v >> 10 & 31, 5), toByte(v >> 5 & 31, 5), toByte(v & 31, 5));
    const bool clear = bits == 16 && alphaBits == 1 && (v & 0x8000) == 0;
    return clear ? color & 0xFFFFFF : color;
}

std::uint32_t greyOf(std::uint64_t value, unsigned bits) {
    const auto level = static_cast<std::uint32_t>(value & 0xFF);
    const auto alpha = bits == 16 ? static_cast<std::uint32_t>(value >> 8) : 0xFF;
    return (opaque(level, level, level) & 0xFFFFFF) | alpha << 24;
}

class Pixels {
  public:
    Pixels(ByteReader& from, const Head& of) : in(from), head(of) {
        const int size = static_cast<int>(head.colorBits + 7) / 8;
        for (std::uint64_t i = 0; i < head.colorCount && size > 0 && in.ok(); ++i) {
            palette.push_back(colorOf(in.fixed(size), head.colorBits, head.alphaBits));
        }
    }

    std::uint32_t next() {
        if (!head.packed) return read();
        if (left == 0) {
            const unsigned packet = in.byte();
            left = (packet & 127U) + 1;
            repeats = (packet & 128U) != 0;
            if (repeats) repeated = read();
        }
        --left;
        return repeats ? repeated : read();
    }

  private:
    std::uint32_t read() {
        const std::uint64_t value = in.fixed(static_cast<int>(head.bits + 7) / 8);
        if (head.kind == 2) return colorOf(value, head.bits, head.alphaBits);
        if (head.kind == 3) return greyOf(value, head.bits);
        const std::uint64_t index = value - head.firstColor;
        return index < palette.size() ? palette[index] : 0xFF000000;
    }

    ByteReader& in;
    const Head& head;
    std::vector<std::uint32_t> palette;
    unsigned left = 0; ///< pixels of the packet
    bool repeats = false;
    std::uint32_t repeated = 0;
};

} // namespace

std::string decodeTga(std::string_view bytes, Image& image) {
    ByteReader in(bytes);
    Head head{};
    if (!readHead(in, head)) return unknownImage;
    // A packet of 128 pixels takes two bytes at least.
    const std::int64_t room = static_cast<std::int64_t>(in.left()) * (head.packed ? 64 : 1);
    if (std::int64_t{head.width} * head.height > room) return imageEndsEarly;
    if (std::string reason = makeRoom(image, head.width, head.height); !reason.empty()) {
        return reason;
    }
    Pixels pixels(in, head);
    for (int i = 0; i < head.height; ++i) {
        const int row = head.fromTop ? i : head.height - 1 - i;
        std::uint32_t* const line = image.pixels.data() + std::ptrdiff_t{row} * head.width;
        for (int k = 0; k < head.width; ++k) {
            line[head.fromRight ? head.width - 1 - k : k] = pixels.next();
        }
        if (!in.ok()) return imageEndsEarly;
    }
    dropEmptyAlpha(image);
    return "";
}

} // namespace polyfab
