// SPDX-License-Identifier: GPL-3.0-or-later
// JSON text that leaves in pieces, so that a document of any size takes one buffer.
#pragma once

#include "platform/platform.h"

#include <array>
#include <concepts>
#include <cstdint>
#include <string_view>

namespace polyfab {

class JsonPieces {
  public:
    /// The sink must last as long as this.
    explicit JsonPieces(const TextSink& to) : sink(to) {}

    /// Appends all of them: texts as they are, numbers so that they read back to the same.
    template <typename... Parts>
    void add(const Parts&... parts) {
        (put(parts), ...);
    }

    /// Appends a list of numbers.
    template <typename... Numbers>
    void addList(const Numbers&... numbers) {
        const char* before = "[";
        ((add(before, numbers), before = ","), ...);
        add("]");
    }

    /// Appends the text as a string. Names come from files and may be anything but UTF-8; such
    /// bytes are shown as U+FFFD.
    void addString(const char* text);

    /// Hands over what the buffer still holds.
    void finish();

  private:
    void put(std::string_view text);
    void put(double value);
    void put(std::int64_t value);
    template <std::integral Value>
    void put(Value value) {
        put(static_cast<std::int64_t>(value));
    }
    char* roomFor(std::size_t size);

    const TextSink& sink;
    std::array<char, 1 << 16> buffer;
    std::size_t used = 0;
};

} // namespace polyfab
