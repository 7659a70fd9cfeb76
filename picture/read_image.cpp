// SPDX-License-Identifier: GPL-3.0-or-later
#include "picture/read_image.h"

#include "io/read_file.h"
#include "picture/image_formats.h"

#include <new>
#include <utility>

namespace polyfab {
namespace {

struct Reader {
    std::string_view head; ///< what such a file begins with
    std::string (*decode)(std::string_view bytes, Image& image);
};

constexpr Reader readers[] = {
    {pngHead, decodePng}, {jpegHead, decodeJpeg}, {"BM", decodeBmp}, {"P6", decodePpm},
    {"P5", decodePpm},    {"P3", decodePpm},      {"P2", decodePpm}, {"", decodeTga},
};

/// As many bytes as the largest picture takes where none is packed.
constexpr std::int64_t maxFileBytes = 8 * maxImagePixels + (1 << 20);

std::string readBytes(const std::string& path, std::string& bytes) {
    PieceReader file(path);
    if (!file.isOpen()) return "the file can't be opened";
    if (file.size() > maxFileBytes) return "the file is too large";
    bytes.reserve(static_cast<std::size_t>(file.size()));
    for (std::string_view text; file.next(0, text); bytes += text) {
        if (file.bytesRead() > maxFileBytes) return "the file is too large";
    }
    return file.failed() ? "the file can't be read" : "";
}

} // namespace

std::string makeRoom(Image& image, std::int64_t width, std::int64_t height) {
    if (width < 1 || height < 1) return "it has no pixels";
    if (width > maxImageSide || height > maxImageSide || width * height > maxImagePixels) {
        return std::to_string(width) + " x " + std::to_string(height) + " pixels are too many";
    }
    image.width = static_cast<int>(width);
    image.height = static_cast<int>(height);
    image.pixels.assign(static_cast<std::size_t>(width * height), 0);
    return "";
}

void dropEmptyAlpha(Image& image) {
    for (const std::uint32_t pixel : image.pixels) {
        if (pixel >> 24 != 0) return;
    }
    for (std::uint32_t& pixel : image.pixels) pixel |= 0xFF000000;
}

std::string decodeImage(std::string_view bytes, Image& image) try {
    for (const Reader& reader : readers) {
        if (!bytes.starts_with(reader.head)) continue;
        Image read;
        std::string reason = reader.decode(bytes, read);
        if (reason.empty()) image = std::move(read);
        return reason;
    }
    return unknownImage;
} catch (const std::bad_alloc&) {
    return "there is not enough memory";
}

std::string readImage(const std::string& path, Image& image) try {
    std::string bytes;
    std::string reason = readBytes(path, bytes);
    return reason.empty() ? decodeImage(bytes, image) : reason;
} catch (const std::bad_alloc&) {
    return "there is not enough memory";
}

} // namespace polyfab
