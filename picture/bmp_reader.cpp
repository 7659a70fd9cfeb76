// SPDX-License-Identifier: GPL-3.0-or-later
// BMP files: palettes of 1, 4 and 8 bits, also in runs, and colours of 16, 24 and 32 bits, also
// with bit fields; from below or from the top.
#include "io/bytes.h"
#include "picture/image_formats.h"
#include "picture/read_image.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <span>
#include <vector>

namespace polyfab {
namespace {

enum Packing : std::uint32_t { plain = 0, runs8 = 1, runs4 = 2, fields = 3, alphaFields = 6 };

struct Head {
    std::uint64_t pixelsAt;
    std::size_t size; ///< of the second head, which tells by it what it has
    std::int64_t width, height;
    bool fromTop;
    unsigned bits;
    std::uint32_t packing;
    std::uint64_t colorCount;
    std::array<std::uint32_t, 4> masks; ///< red, green, blue, alpha
    std::vector<std::uint32_t> palette;
};

constexpr std::size_t oldSize = 12, usualSize = 40, fileHeadSize = 14;

std::int64_t signedNumber(ByteReader& in) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(in.fixed(4)));
}

void readSizes(ByteReader& in, Head& head) {
    const bool old = head.size == oldSize;
    head.width = old ? static_cast<std::int64_t>(in.fixed(2)) : signedNumber(in);
    const std::int64_t height = old ? static_cast<std::int64_t>(in.fixed(2)) : signedNumber(in);
    head.fromTop = height < 0;
    head.height = std::abs(height);
    in.fixed(2);
    head.bits = static_cast<unsigned>(in.fixed(2));
    if (old) return;
    head.packing = static_cast<std::uint32_t>(in.fixed(4));
    in.fixed(4);
    in.fixed(8);
    head.colorCount = in.fixed(4);
    in.fixed(4);
}

/// Where the fields of a pixel are: in the larger heads, behind the usual one, or as usual.
void readMasks(ByteReader& in, Head& head) {
    if (head.bits == 16) head.masks = {0x7C00, 0x03E0, 0x001F, 0};
    if (head.bits == 32) head.masks = {0xFF0000, 0x00FF00, 0x0000FF, 0};
    const bool told = head.packing == fields || head.packing == alphaFields;
    const bool alphaToo = head.size >= 56 || head.packing == alphaFields;
    if (!told) return;
    for (std::size_t i = 0; i < (alphaToo ? 4U : 3U); ++i) {
        head.masks[i] = static_cast<std::uint32_t>(in.fixed(4));
    }
}

/// False when it makes no sense or is of a kind that is not read.
bool readHead(std::string_view bytes, Head& head) {
    ByteReader in(bytes);
    in.raw(10);
    head.pixelsAt = in.fixed(4);
    head.size = in.fixed(4);
    if (head.size != oldSize && head.size < usualSize) return false;
    readSizes(in, head);
    readMasks(in, head);
    // The colours stand behind the second head, and behind masks that are not in it.
    const std::size_t read = bytes.size() - in.left();
    const std::size_t begin = std::max(read, fileHeadSize + head.size);
    if (!in.ok() || begin > bytes.size()) return false;
    if (head.bits > 8) return true;
    const std::size_t each = head.size == oldSize ? 3 : 4;
    const std::uint64_t most = std::uint64_t{1} << head.bits;
    const std::uint64_t count = head.colorCount == 0 ? most : std::min(head.colorCount, most);
    ByteReader colors(bytes.substr(begin));
    for (std::uint64_t i = 0; i < count && colors.left() >= each; ++i) {
        const auto color = static_cast<std::uint32_t>(colors.fixed(static_cast<int>(each)));
        head.palette.push_back(color | 0xFF000000);
    }
    return true;
}

bool isRead(const Head& head) {
    constexpr struct {
        unsigned bits;
        std::uint32_t packings; ///< a bit each
    } kinds[] = {{1, 1 << plain},
                 {4, 1 << plain | 1 << runs4},
                 {8, 1 << plain | 1 << runs8},
                 {16, 1 << plain | 1 << fields | 1 << alphaFields},
                 {24, 1 << plain},
                 {32, 1 << plain | 1 << fields | 1 << alphaFields}};
    return std::any_of(std::begin(kinds), std::end(kinds), [&](const auto& kind) {
        return kind.bits == head.bits && head.packing < 32
               && (kind.packings >> head.packing & 1) != 0;
    });
}

/// The bits under the mask as 0 to 255; without any `otherwise`.
std::uint32_t field(std::uint32_t value, std::uint32_t mask, std::uint32_t otherwise) {
    if (mask == 0) return otherwise;
    const int shift = std::countr_zero(mask);
    const auto bits = static_cast<unsigned>(32 - std::countl_zero(mask) - shift);
    const std::uint32_t sample = (value & mask) >> shift;
    return bits > 16 ? sample >> (bits - 8) : toByte(sample, bits);
}

std::uint32_t colorOf(std::uint32_t value, const Head& head) {
    if (head.bits == 24) return value | 0xFF000000;
    if (head.bits <= 8) return value < head.palette.size() ? head.palette[value] : 0xFF000000;
    return field(value, head.masks[3], 255) << 24 | field(value, head.masks[0], 0) << 16
           | field(value, head.masks[1], 0) << 8 | field(value, head.masks[2], 0);
}

std::span<std::uint32_t> rowOf(Image& image, const Head& head, std::int64_t number) {
    const std::int64_t row = head.fromTop ? number : head.height - 1 - number;
    return std::span(image.pixels)
        .subspan(static_cast<std::size_t>(row * head.width), static_cast<std::size_t>(head.width));
}

void readRow(std::string_view bytes, std::span<std::uint32_t> row, const Head& head) {
    ByteReader in(bytes);
    if (head.bits > 8) {
        for (std::uint32_t& pixel : row) {
            pixel = colorOf(static_cast<std::uint32_t>(in.fixed(static_cast<int>(head.bits) / 8)),
                            head);
        }
        return;
    }
    unsigned value = 0;
    unsigned held = 0; // bits of it
    for (std::uint32_t& pixel : row) {
        if (held == 0) {
            value = in.byte();
            held = 8;
        }
        held -= head.bits;
        pixel = colorOf(value >> held & ((1U << head.bits) - 1), head);
    }
}

std::int64_t rowSize(const Head& head) { return (head.width * head.bits + 31) / 32 * 4; }

void readPlain(std::string_view bytes, Image& image, const Head& head) {
    const auto size = static_cast<std::size_t>(rowSize(head));
    for (std::int64_t i = 0; i < head.height; ++i) {
        readRow(bytes.substr(static_cast<std::size_t>(i) * size, size), rowOf(image, head, i),
                head);
    }
    dropEmptyAlpha(image);
}

/// Pixels in runs of one colour (or two in turn), in plain pieces, and with jumps over some. What
/// would fall outside is left out.
class RunReader {
  public:
    RunReader(std::string_view bytes, Image& to, const Head& of) : in(bytes), image(to), head(of) {}

    std::string read() {
        while (row < head.height) {
            const unsigned count = in.byte();
            const unsigned value = in.byte();
            if (!in.ok()) return imageEndsEarly;
            if (count > 0) {
                for (unsigned i = 0; i < count; ++i) put(indexAt(value, i));
            } else if (value > 2) {
                readPiece(value);
            } else if (value == 1) {
                break;
            } else {
                jump(value);
            }
        }
        return in.ok() ? "" : imageEndsEarly;
    }

  private:
    unsigned indexAt(unsigned byte, unsigned place) const {
        if (head.bits == 8) return byte;
        return place % 2 == 0 ? byte >> 4 : byte & 15U;
    }
    void put(unsigned index) {
        if (column < head.width) {
            rowOf(image, head, row)[static_cast<std::size_t>(column)] = colorOf(index, head);
        }
        ++column;
    }
    /// A piece takes an even number of bytes.
    void readPiece(unsigned count) {
        const unsigned perByte = 8 / head.bits;
        const unsigned size = (count + perByte - 1) / perByte;
        unsigned byte = 0;
        for (unsigned i = 0; i < count; ++i) {
            if (i % perByte == 0) byte = in.byte();
            put(indexAt(byte, i));
        }
        if (size % 2 != 0) in.byte();
    }
    void jump(unsigned kind) {
        if (kind == 2) {
            column += in.byte();
            row += in.byte();
        } else {
            column = 0;
            ++row;
        }
    }

    ByteReader in;
    Image& image;
    const Head& head;
    std::int64_t column = 0, row = 0;
};

} // namespace

std::string decodeBmp(std::string_view bytes, Image& image) {
    Head head{};
    if (!readHead(bytes, head)) return "it is damaged";
    if (!isRead(head)) return "it is packed in a way that I don't know";
    const bool runs = head.packing == runs8 || head.packing == runs4;
    if (head.pixelsAt > bytes.size()) return imageEndsEarly;
    const std::string_view pixels = bytes.substr(head.pixelsAt);
    if (!runs && head.width > 0
        && static_cast<std::int64_t>(pixels.size()) / rowSize(head) < head.height) {
        return imageEndsEarly;
    }
    if (std::string reason = makeRoom(image, head.width, head.height); !reason.empty()) {
        return reason;
    }
    if (!runs) {
        readPlain(pixels, image, head);
        return "";
    }
    std::fill(image.pixels.begin(), image.pixels.end(), colorOf(0, head));
    return RunReader(pixels, image, head).read();
}

} // namespace polyfab
