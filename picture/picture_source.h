// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "picture/image.h"

#include <string>

namespace polyfab {

/// A picture that is decoded when it is first asked for: in a file, or of bytes that came with
/// something else.
class PictureSource {
  public:
    explicit PictureSource(std::string path) : file(std::move(path)) {}
    /// `name` is what it is called where it came from.
    PictureSource(std::string name, std::string encoded)
        : file(std::move(name)), data(std::move(encoded)) {}

    /// Its file, or name.
    [[nodiscard]] const std::string& path() const { return file; }
    /// "" of one in a file.
    [[nodiscard]] const std::string& bytes() const { return data; }

    /// Null when it can't be read; it is tried once. It stays where it is as long as this lives.
    [[nodiscard]] const Image* image();
    /// Why it can't be read; "" before it was tried, too.
    [[nodiscard]] const std::string& reason() const { return whyNot; }

  private:
    std::string file, data, whyNot;
    bool tried = false;
    Image decoded;
};

} // namespace polyfab
