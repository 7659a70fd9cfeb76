// SPDX-License-Identifier: GPL-3.0-or-later
// JPEG files. libjpeg leaves by a long jump when a file is bad: each jump ends in a function that
// has nothing to destroy, and what it works on belongs to the caller.
#include "picture/image_formats.h"

#include <csetjmp>
#include <cstddef>
#include <cstdio>
// libjpeg's headers want stdio before them.
#include <jerror.h>
#include <jpeglib.h>

namespace polyfab {
namespace {

/// Passes over the picture that a file may ask for. Ten are usual, and each takes the time of
/// decoding a whole picture, however few bytes it has.
constexpr int maxScans = 50;

/// What the calls of libjpeg work on; it may be jumped over.
struct Reading {
    jpeg_decompress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg_progress_mgr progress{};
    jmp_buf out{};
    char fault[JMSG_LENGTH_MAX] = "";
    const char* bytes = nullptr;
    std::size_t size = 0;
    std::uint32_t* pixels = nullptr;
};

Reading& readingOf(j_common_ptr jpeg) { return *static_cast<Reading*>(jpeg->client_data); }

[[noreturn]] void leave(j_common_ptr jpeg) {
    Reading& reading = readingOf(jpeg);
    reading.errors.format_message(jpeg, reading.fault);
    std::longjmp(reading.out, 1); // NOLINT(cert-err52-cpp): libjpeg's way
}

void leaveBecause(j_common_ptr jpeg, const char* fault) {
    Reading& reading = readingOf(jpeg);
    std::snprintf(reading.fault, sizeof reading.fault, "%s", fault);
    std::longjmp(reading.out, 1); // NOLINT(cert-err52-cpp)
}

/// Pictures of slightly damaged files show; those of files that end early would be half grey.
void warn(j_common_ptr jpeg, int level) {
    const bool ends = level < 0 && jpeg->err->msg_code == JWRN_JPEG_EOF;
    if (ends) leaveBecause(jpeg, imageEndsEarly);
}

void countScans(j_common_ptr jpeg) {
    const bool tooMany = readingOf(jpeg).jpeg.input_scan_number > maxScans;
    if (tooMany) leaveBecause(jpeg, "it has too many scans");
}

/// False when it left by a jump.
bool guarded(Reading& reading, void (*act)(Reading&)) {
    if (setjmp(reading.out) != 0) return false; // NOLINT(cert-err52-cpp)
    act(reading);
    return true;
}

void readHead(Reading& reading) {
    jpeg_create_decompress(&reading.jpeg);
    reading.jpeg.client_data = &reading;
    reading.progress.progress_monitor = countScans;
    reading.jpeg.progress = &reading.progress;
    jpeg_mem_src(&reading.jpeg, reinterpret_cast<const unsigned char*>(reading.bytes),
                 static_cast<unsigned long>(reading.size));
    jpeg_read_header(&reading.jpeg, TRUE);
}

/// A row of four inks becomes one of pixels. Nearly all such files hold them inverted, and say so
/// by a marker.
void mixInks(std::uint32_t* row, std::size_t width, bool inverted) {
    for (std::uint32_t* pixel = row; pixel != row + width; ++pixel) {
        const std::uint32_t inks = inverted ? *pixel : ~*pixel; // K, Y, M, C from the top
        const std::uint32_t black = inks >> 24;
        const auto mixed = [&](int shift) { return ((inks >> shift & 0xFF) * black + 127) / 255; };
        *pixel = opaque(mixed(0), mixed(8), mixed(16));
    }
}

void readPixels(Reading& reading) {
    jpeg_decompress_struct& jpeg = reading.jpeg;
    const bool inks = jpeg.jpeg_color_space == JCS_CMYK || jpeg.jpeg_color_space == JCS_YCCK;
    jpeg.out_color_space = inks ? JCS_CMYK : JCS_EXT_BGRA;
    jpeg_start_decompress(&jpeg);
    while (jpeg.output_scanline < jpeg.output_height) {
        std::uint32_t* const row =
            reading.pixels + std::size_t{jpeg.output_scanline} * jpeg.output_width;
        auto* const samples = reinterpret_cast<JSAMPROW>(row);
        JSAMPROW rows[] = {samples};
        if (jpeg_read_scanlines(&jpeg, rows, 1) != 1)
            leaveBecause(reinterpret_cast<j_common_ptr>(&jpeg), imageEndsEarly);
        if (inks) mixInks(row, jpeg.output_width, jpeg.saw_Adobe_marker != 0);
    }
}

/// What libjpeg holds, given back at the end.
class Handle {
  public:
    explicit Handle(Reading& with) : reading(with) {
        reading.jpeg.err = jpeg_std_error(&reading.errors);
        reading.jpeg.client_data = &reading;
        reading.errors.error_exit = leave;
        reading.errors.emit_message = warn;
    }
    ~Handle() { jpeg_destroy_decompress(&reading.jpeg); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

  private:
    Reading& reading;
};

} // namespace

std::string decodeJpeg(std::string_view bytes, Image& image) {
    Reading reading;
    reading.bytes = bytes.data();
    reading.size = bytes.size();
    const Handle handle(reading);
    if (!guarded(reading, readHead)) return reading.fault;
    std::string reason = makeRoom(image, reading.jpeg.image_width, reading.jpeg.image_height);
    if (!reason.empty()) return reason;
    reading.pixels = image.pixels.data();
    if (!guarded(reading, readPixels)) reason = reading.fault;
    return reason;
}

} // namespace polyfab
