// SPDX-License-Identifier: GPL-3.0-or-later
// Portable pixmaps and graymaps, as bytes (P6, P5) and as text (P3, P2); of several in a file the
// first.
#include "picture/image_formats.h"

#include <algorithm>

namespace polyfab {
namespace {

class Scanner {
  public:
    explicit Scanner(std::string_view text) : rest(text) {}

    /// The next number, or -1. Comments run from a "#" to the end of the line.
    std::int64_t number() {
        skipBlanks();
        std::int64_t value = -1;
        for (; !rest.empty() && rest[0] >= '0' && rest[0] <= '9'; rest.remove_prefix(1)) {
            value = std::min<std::int64_t>(std::max<std::int64_t>(value, 0) * 10 + rest[0] - '0',
                                           1'000'000);
        }
        return value;
    }
    /// Bytes as they are.
    std::string_view left() const { return rest; }
    void skip(std::size_t count) { rest.remove_prefix(std::min(count, rest.size())); }

  private:
    void skipBlanks() {
        while (!rest.empty() && (rest[0] == '#' || static_cast<unsigned char>(rest[0]) <= ' ')) {
            rest.remove_prefix(rest[0] == '#' ? std::min(rest.find('\n'), rest.size()) : 1);
        }
    }
    std::string_view rest;
};

struct Form {
    bool text;
    std::size_t channels;
    std::int64_t highest; ///< value of a sample
};

/// The next sample as 0 to 255; -1: there is none.
int sample(Scanner& scanner, const Form& form) {
    std::int64_t value = 0;
    if (form.text) {
        value = scanner.number();
    } else {
        const std::size_t size = form.highest > 255 ? 2 : 1;
        const std::string_view bytes = scanner.left().substr(0, size);
        if (bytes.size() < size) return -1;
        for (const char byte : bytes) value = value << 8 | static_cast<unsigned char>(byte);
        scanner.skip(size);
    }
    if (value < 0) return -1;
    return static_cast<int>((std::min(value, form.highest) * 255 + form.highest / 2)
                            / form.highest);
}

} // namespace

std::string decodePpm(std::string_view bytes, Image& image) {
    const char kind = bytes[1];
    Scanner scanner(bytes.substr(2));
    const std::int64_t width = scanner.number();
    const std::int64_t height = scanner.number();
    const Form form{kind < '5', kind == '3' || kind == '6' ? 3U : 1U, scanner.number()};
    if (form.highest < 1 || form.highest > 65535) return "it is damaged";
    scanner.skip(form.text ? 0 : 1);
    // A sample takes a byte at least, as text too.
    if (width > 0 && height > 0 && width <= 1'000'000 && height <= 1'000'000
        && static_cast<std::uint64_t>(width * height) * form.channels > scanner.left().size()) {
        return imageEndsEarly;
    }
    if (std::string reason = makeRoom(image, width, height); !reason.empty()) return reason;
    for (std::uint32_t& pixel : image.pixels) {
        int channels[3];
        for (std::size_t i = 0; i < form.channels; ++i) {
            channels[i] = sample(scanner, form);
            if (channels[i] < 0) return imageEndsEarly;
        }
        if (form.channels == 1) channels[1] = channels[2] = channels[0];
        pixel =
            opaque(static_cast<std::uint32_t>(channels[0]), static_cast<std::uint32_t>(channels[1]),
                   static_cast<std::uint32_t>(channels[2]));
    }
    return "";
}

} // namespace polyfab
