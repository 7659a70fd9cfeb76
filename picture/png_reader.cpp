// SPDX-License-Identifier: GPL-3.0-or-later
// PNG files. libpng leaves by a long jump when a file is bad: each jump ends in a function that has
// nothing to destroy, and what it works on belongs to the caller. Its simplified interface would
// jump nowhere, but brings the samples to another gamma.
#include "picture/image_formats.h"

#include <algorithm>
#include <bit>
#include <csetjmp>
#include <cstddef>
#include <cstring>
#include <png.h>

namespace polyfab {
namespace {

static_assert(std::endian::native == std::endian::little, "pixels are handed over as B, G, R, A");

/// What the calls of libpng work on; it may be jumped over.
struct Reading {
    const char* next;
    std::size_t left;
    char fault[120] = "it is damaged";
    png_structp png = nullptr;
    png_infop info = nullptr;
    std::uint32_t* pixels = nullptr;
};

void takeBytes(png_structp png, png_bytep to, std::size_t count) {
    auto& reading = *static_cast<Reading*>(png_get_io_ptr(png));
    if (count > reading.left) png_error(png, imageEndsEarly);
    std::memcpy(to, reading.next, count);
    reading.next += count;
    reading.left -= count;
}

[[noreturn]] void leave(png_structp png, png_const_charp fault) {
    auto& reading = *static_cast<Reading*>(png_get_error_ptr(png));
    const std::size_t size = std::min(std::strlen(fault), sizeof reading.fault - 1);
    std::memcpy(reading.fault, fault, size);
    reading.fault[size] = '\0';
    png_longjmp(png, 1);
}

void ignore(png_structp, png_const_charp) {}

/// False when it left by a jump.
bool guarded(Reading& reading, void (*act)(Reading&)) {
    if (setjmp(png_jmpbuf(reading.png)) != 0) return false; // NOLINT(cert-err52-cpp): libpng's way
    act(reading);
    return true;
}

void readHead(Reading& reading) {
    png_set_read_fn(reading.png, &reading, takeBytes);
    png_set_user_limits(reading.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX); // told by makeRoom
    png_read_info(reading.png, reading.info);
}

/// Everything comes as eight bits of blue, green, red and alpha.
void readPixels(Reading& reading) {
    const png_structp png = reading.png;
    png_set_scale_16(png);
    png_set_expand(png);
    png_set_gray_to_rgb(png);
    png_set_add_alpha(png, 0xFF, PNG_FILLER_AFTER);
    png_set_bgr(png);
    const int passes = png_set_interlace_handling(png);
    png_read_update_info(png, reading.info);
    const std::size_t width = png_get_image_width(png, reading.info);
    const std::size_t height = png_get_image_height(png, reading.info);
    for (int pass = 0; pass < passes; ++pass) {
        for (std::size_t row = 0; row < height; ++row) {
            png_read_row(png, reinterpret_cast<png_bytep>(reading.pixels + row * width), nullptr);
        }
    }
}

/// What libpng holds, given back at the end.
class Handles {
  public:
    explicit Handles(Reading& with) : reading(with) {
        reading.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &reading, leave, ignore);
        if (reading.png != nullptr) reading.info = png_create_info_struct(reading.png);
    }
    ~Handles() { png_destroy_read_struct(&reading.png, &reading.info, nullptr); }
    Handles(const Handles&) = delete;
    Handles& operator=(const Handles&) = delete;

  private:
    Reading& reading;
};

} // namespace

std::string decodePng(std::string_view bytes, Image& image) {
    Reading reading{bytes.data(), bytes.size()};
    const Handles handles(reading);
    if (reading.info == nullptr) return "there is not enough memory";
    if (!guarded(reading, readHead)) return reading.fault;
    std::string reason = makeRoom(image, png_get_image_width(reading.png, reading.info),
                                  png_get_image_height(reading.png, reading.info));
    if (!reason.empty()) return reason;
    reading.pixels = image.pixels.data();
    if (!guarded(reading, readPixels)) reason = reading.fault;
    return reason;
}

} // namespace polyfab
