// SPDX-License-Identifier: GPL-3.0-or-later
// Numbers and texts as bytes, the same on every machine: lowest byte first, small numbers short.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace polyfab {

class ByteWriter {
  public:
    void byte(std::uint8_t value) { bytes.push_back(static_cast<char>(value)); }
    /// The lowest `count` bytes of the value.
    void fixed(std::uint64_t value, int count) {
        for (int i = 0; i < count; ++i) byte(static_cast<std::uint8_t>(value >> 8 * i));
    }
    void real(double value) { fixed(std::bit_cast<std::uint64_t>(value), 8); }
    /// Seven bits a byte.
    void number(std::uint64_t value) {
        for (; value >= 0x80; value >>= 7) byte(static_cast<std::uint8_t>(value | 0x80));
        byte(static_cast<std::uint8_t>(value));
    }
    /// The sign goes into the lowest bit, so that small numbers of both signs are short.
    void signedNumber(std::int64_t value) {
        number(static_cast<std::uint64_t>(value) << 1 ^ static_cast<std::uint64_t>(value >> 63));
    }
    void text(std::string_view value) {
        number(value.size());
        bytes += value;
    }

    std::string bytes;
};

/// Reads what a ByteWriter wrote. Behind the end, and after anything that no writer writes, `ok` is
/// false for good and all that is read is 0 or empty.
class ByteReader {
  public:
    explicit ByteReader(std::string_view bytes) : rest(bytes) {}

    [[nodiscard]] bool ok() const { return !failed; }
    [[nodiscard]] std::size_t left() const { return rest.size(); }
    void fail() {
        failed = true;
        rest = {};
    }

    std::string_view raw(std::size_t count) {
        if (count > rest.size()) {
            fail();
            return {};
        }
        const std::string_view taken = rest.substr(0, count);
        rest.remove_prefix(count);
        return taken;
    }
    std::uint8_t byte() {
        const std::string_view taken = raw(1);
        return taken.empty() ? std::uint8_t{0} : static_cast<std::uint8_t>(taken[0]);
    }
    std::uint64_t fixed(int count) {
        std::uint64_t value = 0;
        for (int i = 0; i < count; ++i) value |= std::uint64_t{byte()} << 8 * i;
        return failed ? 0 : value;
    }
    double real() { return std::bit_cast<double>(fixed(8)); }
    std::uint64_t number() {
        std::uint64_t value = 0;
        for (int shift = 0; shift < 64; shift += 7) {
            const std::uint8_t next = byte();
            if (shift == 63 && next > 1) break;
            value |= std::uint64_t{next & 0x7FU} << shift;
            if (next < 0x80) return failed ? 0 : value;
        }
        fail();
        return 0;
    }
    std::int64_t signedNumber() {
        const std::uint64_t value = number();
        return static_cast<std::int64_t>(value >> 1 ^ (~(value & 1) + 1));
    }
    /// A number from `lowest` to `highest`.
    std::int64_t signedWithin(std::int64_t lowest, std::int64_t highest) {
        const std::int64_t value = signedNumber();
        if (value >= lowest && value <= highest) return value;
        fail();
        return lowest;
    }
    std::string_view text() {
        const std::uint64_t size = number();
        if (size > rest.size()) fail();
        return raw(failed ? 0 : static_cast<std::size_t>(size));
    }

  private:
    std::string_view rest;
    bool failed = false;
};

} // namespace polyfab
