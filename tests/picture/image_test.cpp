// SPDX-License-Identifier: GPL-3.0-or-later
// The small files are those that fuzzing starts from.
#include "picture/read_image.h"
#include "picture/write_png.h"
#include "tests/support/temp_folder.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <jpeglib.h>
#include <memory>
#include <vector>

namespace polyfab::test {
namespace {

using Pixels = std::vector<std::uint32_t>;

std::string corpus(const std::string& name) {
    std::stringstream content;
    content << std::ifstream(std::string(POLYFAB_CORPUS) + "/" + name, std::ios::binary).rdbuf();
    return content.str();
}

TEST(Image, FilesOfEachKindShowTheirPixels) {
    const struct {
        const char* name;
        int width;
        Pixels pixels;
    } files[] = {
        {"png/palette", 2, {0x40FF0000, 0xFF0080FF}},
        {"png/grey16_gamma", 2, {0xFF121212, 0xFFFFFFFF}},
        {"png/1bit", 2, {0xFF000000, 0xFFFFFFFF}},
        {"png/interlaced", 2, {0x04010203, 0x08050607, 0x0C090A0B, 0x100D0E0F}},
        {"tga/24", 2, {0xFF010203, 0xFF040506}},
        {"tga/32_rle_top", 3, {0x80010203, 0x80010203, 0x06070809}},
        {"tga/pal16", 2, {0x000000FF, 0xFFFF0000, 0xFFFF0000, 0x000000FF}},
        {"tga/grey_right", 2, {0xFF141414, 0xFF0A0A0A}},
        {"bmp/24_below", 1, {0xFF040506, 0xFF010203}},
        {"bmp/24_top", 1, {0xFF010203, 0xFF040506}},
        {"bmp/old_1bit", 3, {0xFF0A141E, 0xFF000000, 0xFF0A141E}},
        {"bmp/16_fields", 2, {0xFFFF0000, 0xFF00FFFF}},
        {"bmp/v4_alpha", 1, {0x80112233}},
        {"bmp/rle8",
         4,
         {0xFF0A141E, 0xFF000000, 0xFF0A141E, 0xFF000000, //
          0xFF0A141E, 0xFF0A141E, 0xFF000000, 0xFF0A141E}},
        {"bmp/rle4", 4, {0xFF0A141E, 0xFF000000, 0xFF0A141E, 0xFF000000}},
        {"ppm/6", 1, {0xFF010203, 0xFF040506}},
        {"ppm/5_16", 2, {0xFF121212, 0xFFFFFFFF}},
        {"ppm/3", 1, {0xFF0055FF}},
    };
    for (const auto& file : files) {
        SCOPED_TRACE(file.name);
        const std::string bytes = corpus(file.name);
        Image image;
        EXPECT_EQ(decodeImage(bytes, image), "");
        EXPECT_EQ(image.width, file.width);
        EXPECT_EQ(image.pixels, file.pixels);
        // What ends early is refused, or shows in full: what stands behind the pixels is not read.
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            const std::unique_ptr<char[]> part(new char[size]); // so that an overrun is seen
            std::copy_n(bytes.data(), size, part.get());
            Image read;
            if (!decodeImage({part.get(), size}, read).empty()) continue;
            EXPECT_EQ(read.pixels.size(), file.pixels.size()) << size;
        }
    }
}

/// A JPEG file of one colour.
std::string jpeg(J_COLOR_SPACE space, std::vector<JSAMPLE> color, int side, int scans = 0) {
    jpeg_compress_struct out{};
    jpeg_error_mgr errors{};
    out.err = jpeg_std_error(&errors);
    jpeg_create_compress(&out);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&out, &bytes, &size);
    out.image_width = out.image_height = static_cast<JDIMENSION>(side);
    out.input_components = static_cast<int>(color.size());
    out.in_color_space = space;
    jpeg_set_defaults(&out);
    std::vector<jpeg_scan_info> script(static_cast<std::size_t>(scans));
    // All of the first values at once, and then each band of the others in a scan of its own.
    for (int i = 0; i < scans; ++i) {
        const int band = (i - 1) % 63 + 1;
        script[static_cast<std::size_t>(i)] =
            i == 0 ? jpeg_scan_info{3, {0, 1, 2}, 0, 0, 0, 0}
                   : jpeg_scan_info{1, {(i - 1) / 63}, band, band, 0, 0};
    }
    if (scans > 0) {
        out.scan_info = script.data();
        out.num_scans = scans;
    }
    jpeg_start_compress(&out, TRUE);
    std::vector<JSAMPLE> row;
    for (int i = 0; i < side; ++i) row.insert(row.end(), color.begin(), color.end());
    JSAMPROW rows[] = {row.data()};
    while (out.next_scanline < out.image_height) jpeg_write_scanlines(&out, rows, 1);
    jpeg_finish_compress(&out);
    std::string file(reinterpret_cast<char*>(bytes), size);
    jpeg_destroy_compress(&out);
    std::free(bytes);
    return file;
}

TEST(Image, JpegFilesOfColoursGreyAndInksShowWhole) {
    const struct {
        std::string bytes;
        std::uint32_t pixel;
    } files[] = {
        {jpeg(JCS_GRAYSCALE, {77}, 9), 0xFF4D4D4D},
        {jpeg(JCS_RGB, {200, 200, 200}, 9), 0xFFC8C8C8},
        {jpeg(JCS_RGB, {200, 200, 200}, 9, 40), 0xFFC8C8C8},
        {jpeg(JCS_CMYK, {255, 128, 0, 255}, 9), 0xFFFF8000}, // written inverted, with the marker
    };
    for (const auto& file : files) {
        Image image;
        EXPECT_EQ(decodeImage(file.bytes, image), "");
        EXPECT_EQ(image.pixels, Pixels(81, file.pixel));
        EXPECT_EQ(decodeImage(file.bytes.substr(0, file.bytes.size() - 20), image),
                  "the file ends too early");
    }
    Image image;
    EXPECT_EQ(decodeImage(jpeg(JCS_RGB, {1, 2, 3}, 9, 60), image), "it has too many scans");
}

TEST(Image, SizesAreRefusedBeforeAnyRoomIsMade) {
    const auto sized = [](std::string bytes, std::size_t at, const std::string& size) {
        return bytes.replace(at, size.size(), size);
    };
    using namespace std::string_literals;
    const std::string grey = jpeg(JCS_GRAYSCALE, {1}, 9);
    const std::string refused[] = {
        sized(corpus("tga/24"), 12, "\xFF\xFF"s),
        sized(corpus("bmp/rle8"), 18, "\0\0\1\0"s),
        sized(corpus("bmp/24_top"), 20, "\xFF\x7F"s),
        "P6 16385 1 255 " + std::string(50000, 'x'),
        "P5 16384 16384 255 ",
        sized(grey, grey.find("\xFF\xC0") + 5, "\x40\x01"s),
    };
    for (const std::string& bytes : refused) {
        Image image{1, 1, {7}};
        EXPECT_NE(decodeImage(bytes, image), "");
        EXPECT_EQ(image.pixels, Pixels{7});
    }
    const TempFolder folder;
    Image image;
    EXPECT_NE(readImage(folder.path("none.png"), image), "");
    EXPECT_NE(readImage(folder.path("."), image), "");
    const Image wide{16385, 1, Pixels(16385, 0xFF000000)};
    ASSERT_EQ(writePngFile(wide, folder.path("wide.png")), "");
    EXPECT_EQ(readImage(folder.path("wide.png"), image), "16385 x 1 pixels are too many");
}

TEST(Image, WrittenPngFilesReadBack) {
    const TempFolder folder;
    const std::string path = folder.path("a.png");
    for (const Image& image : {Image{3, 1, {0xFF010203, 0xFFFFFFFF, 0xFF000000}},
                               Image{1, 2, {0x00010203, 0x80FFFFFF}}}) {
        Image read;
        ASSERT_EQ(writePngFile(image, path), "");
        EXPECT_EQ(readImage(path, read), "");
        EXPECT_EQ(read.width, image.width);
        EXPECT_EQ(read.pixels, image.pixels);
    }
    EXPECT_NE(writePngFile({1, 1, {0}}, folder.path("no/a.png")), "");
}

} // namespace
} // namespace polyfab::test
